#include "applications/player/session/packagecooker.h"

#include "applications/player/session/libraryversion.h"
#include "applications/player/session/packagelistener.h"

#include <QDir>

#include <limits>
#include <map>

namespace Zph::Applications::Player {

namespace {

/// Who listens to a context: its callbacks get nothing else.
std::map<VellorCookerContext*, PackageCooker*>& cookers()
{
    static std::map<VellorCookerContext*, PackageCooker*> map;
    return map;
}

} // namespace

PackageCooker::PackageCooker(PackageListener& listener, CookingOptions options)
    : m_listener(listener), m_options(std::move(options))
{
}

PackageCooker::~PackageCooker()
{
    if (m_handle)
        vellorCookerHandleRelease(m_handle);
    if (m_context)
        vellorCookerContextRelease(m_context);
    cookers().erase(m_context);
}

bool PackageCooker::cook(const QStringList& paths)
{
    m_listener.stage(tr("Cooker Version") + ' ' + versionText());
    m_listener.stage(tr("Started."));
    if (const quint32 error = run(paths)) {
        m_listener.message(2, tr("Cooking process failed: %2.").arg(errorMessage(int(error))));
        m_listener.status(tr("Load Failed!"));
        return false;
    }
    m_listener.stage(tr("Done"));
    return true;
}

quint32 PackageCooker::run(const QStringList& paths)
{
    if (const quint32 error = createContext())
        return error;
    if (const quint32 error = vellorCookerHandleInit(&m_handle, m_context))
        return error;
    pushPackages(paths);
    pushAliases();
    if (const quint32 error = vellorCookerHandleCook(m_handle))
        return error;
    return takeResults();
}

quint32 PackageCooker::createContext()
{
    if (const quint32 error = vellorCookerContextInit(&m_context, VELLOR_COOKER_API_VERSION))
        return error;
    cookers()[m_context] = this;
    vellorCookerContextSetCallback(m_context, VELLOR_COOKER_CALLBACK_STAGE,
                                   reinterpret_cast<VellorFunction>(&PackageCooker::onStage));
    vellorCookerContextSetCallback(m_context, VELLOR_COOKER_CALLBACK_MESSAGE,
                                   reinterpret_cast<VellorFunction>(&PackageCooker::onMessage));
    if (m_options.sizeLimit > 0)
        vellorCookerContextSetOption(m_context, VELLOR_COOKER_OPTION_SIZE_LIMIT, 1u << m_options.sizeLimit);
    if (const quint32 mask = dynamicMask(m_options.dynamicState))
        vellorCookerContextSetOption(m_context, VELLOR_COOKER_OPTION_DYNAMIC, mask);
    return VELLOR_COOKER_OK;
}

void PackageCooker::pushPackages(const QStringList& paths)
{
    for (const QString& path : paths) {
        QVector<uint> wide = path.toUcs4();
        wide.append(0);
        if (const quint32 error = vellorCookerHandlePushPackageFileW(m_handle, wide.constData())) {
            m_listener.message(
                2, tr("Cannot open Vellor package '%1': %2.").arg(path, errorMessage(int(error))));
            return;
        }
    }
}

void PackageCooker::pushAliases()
{
    for (const CookingAlias& alias : qAsConst(m_options.aliases)) {
        const QDir folder(alias.path);
        if (!alias.path.isEmpty() && folder.exists())
            vellorCookerHandlePushIncludeDirA(m_handle, alias.name.toUtf8(), folder.absolutePath().toUtf8());
    }
}

quint32 PackageCooker::takeResults()
{
    const void* data = nullptr;
    uint64_t size = 0;
    const char* xml = nullptr;
    if (const quint32 error = vellorCookerHandleGetAssembly(m_handle, &data, &size))
        return error;
    if (const quint32 error = vellorCookerHandleGetIODesc(m_handle, &xml))
        return error;
    if (size > uint64_t(std::numeric_limits<int>::max()))
        return VELLOR_COOKER_ERROR_BACK_END;
    m_assembly = QByteArray::fromRawData(static_cast<const char*>(data), int(size));
    m_description = QByteArray::fromRawData(xml, int(qstrlen(xml)));
    return VELLOR_COOKER_OK;
}

QString PackageCooker::versionText()
{
    VellorCookerVersion version = {};
    vellorCookerGetCurrentVersion(&version);
    return libraryVersionText(version);
}

quint32 PackageCooker::dynamicMask(int dynamicState)
{
    constexpr quint32 bits[] = {VELLOR_COOKER_DYNAMIC_OUTPUT_SIZE, VELLOR_COOKER_DYNAMIC_PIXEL_SIZE,
                                VELLOR_COOKER_DYNAMIC_RANDOM_SEED};
    quint32 mask = 0;
    for (int i = 0; i < 3; ++i)
        mask |= dynamicState & (1 << i) ? bits[i] : 0;
    return mask;
}

QString PackageCooker::errorMessage(int code)
{
    switch (code) {
    case VELLOR_COOKER_ERROR_IO:
        return tr("I/O file error");
    case VELLOR_COOKER_ERROR_INVALID_DIRECTORY:
        return tr("Invalid directory");
    case VELLOR_COOKER_ERROR_NO_PACKAGES:
        return tr("No packages to cook");
    case VELLOR_COOKER_ERROR_NO_DEFAULT_DIRECTORY:
        return tr("Missing default directory (Vellor Studio must be installed)");
    case VELLOR_COOKER_ERROR_FRONT_END:
        return tr("Cooking front end error");
    case VELLOR_COOKER_ERROR_INTERMEDIARY:
        return tr("Cooking intermediary pass error");
    case VELLOR_COOKER_ERROR_BACK_END:
        return tr("Cooking back end error");
    case VELLOR_COOKER_ERROR_NO_RESULTS:
        return tr("No cook results available");
    case VELLOR_COOKER_ERROR_API_VERSION:
        return tr("Cooker version not supported (vellor_cooker.dll should be updated)");
    case VELLOR_COOKER_ERROR_OPEN_ARCHIVE:
        return tr("Cannot open Vellor Assembly (.VLRAR)");
    case VELLOR_COOKER_ERROR_INVALID_ARCHIVE:
        return tr("Invalid Vellor Assembly (.VLRAR) file");
    default:
        return tr("Internal error (code: %1)").arg(code);
    }
}

void PackageCooker::onStage(VellorCookerContext* context, int32_t stage)
{
    static const std::map<int, const char*> texts = {
        {VELLOR_COOKER_STAGE_LOADING, QT_TR_NOOP("Loading...")},
        {VELLOR_COOKER_STAGE_FLATTENING, QT_TR_NOOP("Flattening...")},
        {VELLOR_COOKER_STAGE_FRONT_END, QT_TR_NOOP("Front End...")},
        {VELLOR_COOKER_STAGE_BACK_END, QT_TR_NOOP("Back End...")}};
    PackageCooker* cooker = cookers()[context];
    const auto text = texts.find(stage);
    if (cooker && text != texts.end())
        cooker->m_listener.stage(tr(text->second));
}

void PackageCooker::onMessage(VellorCookerContext* context, int32_t level, const char* text)
{
    if (PackageCooker* cooker = cookers()[context])
        cooker->m_listener.message(level, QString::fromUtf8(text));
}

} // namespace Zph::Applications::Player
