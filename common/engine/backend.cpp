#include "common/engine/backend.h"

#include "common/engine/backendlocal.h"

#include <QCoreApplication>
#include <QDir>

#include <memory>
#include <set>
#include <string>

namespace Zph::Engine {

namespace {

std::unique_ptr<DynLoad::BackEndLocal>& backEnd()
{
    static std::unique_ptr<DynLoad::BackEndLocal> current;
    return current;
}

// A copy of a text of a library, which lives as long as the process.
const char* keep(const char* text)
{
    static std::set<std::string> texts;
    return texts.insert(text ? text : "").first->c_str();
}

} // namespace

bool load(const QString& path)
{
    auto& current = backEnd();
    // Where no copy can be made, the system loader takes a path that is loaded already for the same library,
    // also when another file lies there by now. Letting go of it first is what makes a rebuilt engine come
    // in.
    if (current && current->path() == path)
        current.reset();
    current = std::make_unique<DynLoad::BackEndLocal>(path, DynLoad::BackEndLocal::Use::Keep);
    if (!current->isValid())
        current.reset();
    return isLoaded();
}

void unload()
{
    backEnd().reset();
}

bool isLoaded()
{
    return backEnd() != nullptr;
}

bool probe(const QString& path)
{
    return DynLoad::BackEndLocal(path, DynLoad::BackEndLocal::Use::Look).isValid();
}

bool engineInfo(const QString& path, VellorVersion& version)
{
    if (!QLibrary::isLibrary(path))
        return false;
    const DynLoad::BackEndLocal library(path, DynLoad::BackEndLocal::Use::Look);
    if (!library.isValid())
        return false;
    version = {};
    library.getCurrentVersion(&version, VELLOR_API_VERSION);
    version.name = keep(version.name);
    version.label = keep(version.label);
    version.build = keep(version.build);
    return true;
}

void scanEngines(const QString& directory, QMap<QString, VellorVersion>& engines)
{
    const auto files = QDir(directory).entryInfoList(QDir::Files | QDir::NoSymLinks);
    for (const QFileInfo& file : files) {
        VellorVersion version;
        if (engineInfo(file.absoluteFilePath(), version))
            engines.insert(file.absoluteFilePath(), version);
    }
}

QString engineDescription(uint32_t engineId)
{
    switch (engineId) {
    case VELLOR_ENGINE_DIRECT3D10:
        return QObject::tr("Engine based on Direct3D 10");
    case VELLOR_ENGINE_DIRECT3D11:
        return QObject::tr("Engine based on Direct3D 11");
    case VELLOR_ENGINE_OPENGL3:
        return QObject::tr("Engine based on OpenGL 3");
    case VELLOR_ENGINE_SSE2:
        return QObject::tr("Software Engine with SSE2 optimizations");
    default:
        return {};
    }
}

QString engineVersionText(const VellorVersion& version)
{
    auto text = QStringLiteral("%2.%3.%4");
    text = text.arg(version.versionMajor).arg(version.versionMinor).arg(version.versionPatch);
    if (version.label && *version.label)
        text += QStringLiteral("-%1").arg(QString::fromUtf8(version.label));
    return text;
}

VellorFunction optionalEntryPoint(const char* symbol)
{
    return isLoaded() ? backEnd()->optionalEntryPoint(symbol) : nullptr;
}

void getCurrentVersion(VellorVersion* version, uint32_t apiVersion)
{
    if (isLoaded())
        backEnd()->getCurrentVersion(version, apiVersion);
}

uint32_t contextInit(VellorContext** context, VellorDevice* device, uint32_t apiVersion, uint32_t reserved)
{
    return isLoaded() ? backEnd()->contextInit(context, device, apiVersion, reserved) : NoBackEnd;
}

void contextRelease(VellorContext* context)
{
    if (isLoaded())
        backEnd()->contextRelease(context);
}

void contextSetCallback(VellorContext* context, uint32_t callbackId, VellorFunction callback)
{
    if (isLoaded())
        backEnd()->contextSetCallback(context, callbackId, callback);
}

void contextMemoryFree(VellorContext* context, void* block)
{
    if (isLoaded())
        backEnd()->contextMemoryFree(context, block);
}

void contextRestoreStates(VellorContext* context)
{
    if (isLoaded())
        backEnd()->contextRestoreStates(context);
}

uint32_t handleInit(VellorHandle** handle, VellorContext* context, const void* data, uint64_t size,
                    const VellorHardResources* resources)
{
    return isLoaded() ? backEnd()->handleInit(handle, context, data, size, resources) : NoBackEnd;
}

void handleRelease(VellorHandle* handle)
{
    if (isLoaded())
        backEnd()->handleRelease(handle);
}

uint32_t handlePushOutputs(VellorHandle* handle, uint32_t flags, const uint32_t* outputs, uint32_t count,
                           void* user)
{
    return isLoaded() ? backEnd()->handlePushOutputs(handle, flags, outputs, count, user) : NoBackEnd;
}

uint32_t handleFlush(VellorHandle* handle)
{
    return isLoaded() ? backEnd()->handleFlush(handle) : NoBackEnd;
}

uint32_t handleStart(VellorHandle* handle, uint32_t flags)
{
    return isLoaded() ? backEnd()->handleStart(handle, flags) : NoBackEnd;
}

void handleGetState(VellorHandle* handle, const void* user, uint32_t* state)
{
    if (isLoaded())
        backEnd()->handleGetState(handle, user, state);
}

uint32_t handleSwitchHard(VellorHandle* handle, uint32_t flags, const VellorHardResources* resources,
                          void* user)
{
    return isLoaded() ? backEnd()->handleSwitchHard(handle, flags, resources, user) : NoBackEnd;
}

void handleStop(VellorHandle* handle, uint32_t mode)
{
    if (isLoaded())
        backEnd()->handleStop(handle, mode);
}

uint32_t handleGetOutputs(VellorHandle* handle, uint32_t flags, uint32_t outputIndex, uint32_t count,
                          void* out)
{
    return isLoaded() ? backEnd()->handleGetOutputs(handle, flags, outputIndex, count, out) : NoBackEnd;
}

uint32_t handlePushSetInput(VellorHandle* handle, uint32_t flags, uint32_t inputIndex, uint32_t inputType,
                            const void* value, void* user)
{
    return isLoaded() ? backEnd()->handlePushSetInput(handle, flags, inputIndex, inputType, value, user)
                      : NoBackEnd;
}

uint32_t handleGetDesc(VellorHandle* handle, VellorDataDesc* desc)
{
    return isLoaded() ? backEnd()->handleGetDesc(handle, desc) : NoBackEnd;
}

uint32_t handleGetOutputDesc(VellorHandle* handle, uint32_t outputIndex, VellorOutputDesc* desc)
{
    return isLoaded() ? backEnd()->handleGetOutputDesc(handle, outputIndex, desc) : NoBackEnd;
}

uint32_t handleGetInputDesc(VellorHandle* handle, uint32_t inputIndex, VellorInputDesc* desc)
{
    return isLoaded() ? backEnd()->handleGetInputDesc(handle, inputIndex, desc) : NoBackEnd;
}

uint32_t handleGetInputImageDesc(VellorHandle* handle, uint32_t inputIndex, VellorImageRequest* request)
{
    return isLoaded() ? backEnd()->handleGetInputImageDesc(handle, inputIndex, request) : NoBackEnd;
}

uint32_t handleSyncSetLabel(VellorHandle* handle, uint32_t label, void* user)
{
    return isLoaded() ? backEnd()->handleSyncSetLabel(handle, label, user) : NoBackEnd;
}

uint32_t handleSyncGetLabel(VellorHandle* handle, uint32_t* label)
{
    return isLoaded() ? backEnd()->handleSyncGetLabel(handle, label) : NoBackEnd;
}

uint32_t handleGetParentContext(VellorHandle* handle, VellorContext** context)
{
    return isLoaded() ? backEnd()->handleGetParentContext(handle, context) : NoBackEnd;
}

uint32_t handleTransferCache(VellorHandle* to, VellorHandle* from, uint32_t flags)
{
    return isLoaded() ? backEnd()->handleTransferCache(to, from, flags) : NoBackEnd;
}

} // namespace Zph::Engine
