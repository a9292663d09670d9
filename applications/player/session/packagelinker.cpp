#include "applications/player/session/packagelinker.h"

#include "applications/player/session/libraryversion.h"
#include "applications/player/description/descriptionfile.h"
#include "applications/player/session/packagelistener.h"
#include "common/engine/backend.h"
#include "orncommon/core/debug.h"

#include <QDomDocument>
#include <QIODevice>

#include <limits>
#include <map>

namespace Zph::Applications::Player {

namespace {

/// Who listens to a context: its callbacks get nothing else.
std::map<VellorLinkerContext*, PackageLinker*>& linkers()
{
    static std::map<VellorLinkerContext*, PackageLinker*> map;
    return map;
}

quint32 loadedEngineId()
{
    VellorVersion version = {};
    Zph::Engine::getCurrentVersion(&version, VELLOR_API_VERSION);
    return version.engineId;
}

} // namespace

PackageLinker::PackageLinker(PackageListener& listener, int sizeLimit)
    : m_listener(listener), m_sizeLimit(sizeLimit)
{
}

PackageLinker::~PackageLinker()
{
    if (m_handle)
        vellorLinkerHandleRelease(m_handle);
    if (m_context)
        vellorLinkerContextRelease(m_context);
    linkers().erase(m_context);
}

bool PackageLinker::link(QIODevice& device)
{
    stage(tr("Linker Version ") + versionText());
    stage(tr("Started."));
    if (const quint32 error = run(device)) {
        m_listener.message(2, tr("Link process failed: %2.").arg(errorMessage(int(error))));
        return false;
    }
    stage(tr("Done"));
    return true;
}

quint32 PackageLinker::run(QIODevice& device)
{
    if (const quint32 error =
            vellorLinkerContextInit(&m_context, VELLOR_LINKER_API_VERSION, loadedEngineId()))
        return error;
    linkers()[m_context] = this;
    vellorLinkerContextSetCallback(m_context, VELLOR_LINKER_CALLBACK_MESSAGE,
                                   reinterpret_cast<VellorFunction>(&PackageLinker::onMessage));
    vellorLinkerContextSetCallback(m_context, VELLOR_LINKER_CALLBACK_XML,
                                   reinterpret_cast<VellorFunction>(&PackageLinker::onXml));
    if (m_sizeLimit > 0)
        vellorLinkerContextSetOption(m_context, VELLOR_LINKER_OPTION_SIZE_LIMIT, 1u << m_sizeLimit);
    m_descriptions.clear();

    if (const quint32 error = vellorLinkerHandleInit(&m_handle, m_context))
        return error;
    const QByteArray bytes = device.readAll();
    const auto size = quint64(bytes.size());
    if (const quint32 error = vellorLinkerHandlePushAssemblyMemory(m_handle, bytes.constData(), size))
        return error;
    const void* data = nullptr;
    uint64_t binarySize = 0;
    if (const quint32 error = vellorLinkerHandleLink(m_handle, &data, &binarySize))
        return error;
    if (binarySize > uint64_t(std::numeric_limits<int>::max()))
        return VELLOR_LINKER_ERROR_LINK;
    m_binary = QByteArray::fromRawData(static_cast<const char*>(data), int(binarySize));
    return VELLOR_LINKER_OK;
}

void PackageLinker::stage(const QString& text) const
{
    m_listener.stage(prefix() + ' ' + text);
}

void PackageLinker::takeDescription(QDomDocument& document) const
{
    document.clear();
    for (const QByteArray& xml : m_descriptions) {
        if (!document.isNull())
            Orn::Debug::error("XML Merging NYI");
        else
            parseDescription(xml, document);
    }
    if (document.isNull())
        m_listener.message(2, tr("Missing Vellor XML description file"));
    else
        m_listener.status(tr("XML description Loaded."));
}

QString PackageLinker::prefix()
{
    return tr("Linking :");
}

QString PackageLinker::versionText()
{
    VellorLinkerVersion version = {};
    vellorLinkerGetCurrentVersion(&version);
    return libraryVersionText(version);
}

QString PackageLinker::errorMessage(int code)
{
    switch (code) {
    case VELLOR_LINKER_ERROR_API_VERSION:
        return tr("Linker version not supported (vellor_linker.dll should be updated)");
    case VELLOR_LINKER_ERROR_ENGINE_VERSION:
        return tr("Engine version not supported");
    case VELLOR_LINKER_ERROR_IO:
        return tr("I/O file error");
    case VELLOR_LINKER_ERROR_INVALID_ASSEMBLY:
        return tr("Invalid assembly or version");
    case VELLOR_LINKER_ERROR_NO_ASSEMBLY:
        return tr("No assemblies to link");
    case VELLOR_LINKER_ERROR_LINK:
        return tr("Link process failed");
    case VELLOR_LINKER_ERROR_INVALID_ARCHIVE:
        return tr("Invalid archive format");
    case VELLOR_LINKER_ERROR_EMPTY_ARCHIVE:
        return tr("Empty archive");
    default:
        return tr("Internal error (code: %1)").arg(code);
    }
}

void PackageLinker::onMessage(VellorLinkerContext* context, int32_t level, const char* text)
{
    if (PackageLinker* linker = linkers()[context])
        linker->m_listener.message(level, prefix() + ' ' + QString::fromUtf8(text));
}

void PackageLinker::onXml(VellorLinkerContext* context, int32_t, const char* xml)
{
    if (PackageLinker* linker = linkers()[context])
        linker->m_descriptions.append(QByteArray(xml));
}

} // namespace Zph::Applications::Player
