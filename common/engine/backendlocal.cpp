#include "common/engine/backendlocal.h"

#include "common/engine/libraryfile.h"

namespace Zph::Engine::DynLoad {

namespace {

template<typename Function> bool resolve(QLibrary& library, const char* symbol, Function& entry)
{
    entry = reinterpret_cast<Function>(library.resolve(symbol));
    return entry != nullptr;
}

} // namespace

BackEndLocal::BackEndLocal(const QString& path, Use use) : m_path(path)
{
    if (isWholeLibrary(path))
        loadLibrary(use);
    if (!m_library.isLoaded() || !resolveAll())
        return;
    VellorVersion version = {};
    m_entries.getCurrentVersion(&version, VELLOR_API_VERSION);
    m_valid = version.status == 0;
}

BackEndLocal::~BackEndLocal()
{
    m_library.unload();
}

void BackEndLocal::loadLibrary(Use use)
{
    if (const auto copy = use == Use::Keep ? hiddenCopy(m_path) : nullptr) {
        m_library.setFileName(copy->fileName());
        if (m_library.load())
            return;
    }
    m_library.setFileName(m_path);
    m_library.load();
}

bool BackEndLocal::resolveAll()
{
    bool all = true;
    all &= resolve(m_library, "vellorGetCurrentVersionImpl", m_entries.getCurrentVersion);
    all &= resolve(m_library, "vellorContextInitImpl", m_entries.contextInit);
    all &= resolve(m_library, "vellorContextRelease", m_entries.contextRelease);
    all &= resolve(m_library, "vellorContextSetCallback", m_entries.contextSetCallback);
    all &= resolve(m_library, "vellorContextMemoryFree", m_entries.contextMemoryFree);
    all &= resolve(m_library, "vellorContextRestoreStates", m_entries.contextRestoreStates);
    all &= resolve(m_library, "vellorHandleInit", m_entries.handleInit);
    all &= resolve(m_library, "vellorHandleRelease", m_entries.handleRelease);
    all &= resolve(m_library, "vellorHandlePushOutputs", m_entries.handlePushOutputs);
    all &= resolve(m_library, "vellorHandleFlush", m_entries.handleFlush);
    all &= resolve(m_library, "vellorHandleStart", m_entries.handleStart);
    all &= resolve(m_library, "vellorHandleGetState", m_entries.handleGetState);
    all &= resolve(m_library, "vellorHandleSwitchHard", m_entries.handleSwitchHard);
    all &= resolve(m_library, "vellorHandleStop", m_entries.handleStop);
    all &= resolve(m_library, "vellorHandleGetOutputs", m_entries.handleGetOutputs);
    all &= resolve(m_library, "vellorHandlePushSetInput", m_entries.handlePushSetInput);
    all &= resolve(m_library, "vellorHandleGetDesc", m_entries.handleGetDesc);
    all &= resolve(m_library, "vellorHandleGetOutputDesc", m_entries.handleGetOutputDesc);
    all &= resolve(m_library, "vellorHandleGetInputDesc", m_entries.handleGetInputDesc);
    all &= resolve(m_library, "vellorHandleGetInputImageDesc", m_entries.handleGetInputImageDesc);
    all &= resolve(m_library, "vellorHandleSyncSetLabel", m_entries.handleSyncSetLabel);
    all &= resolve(m_library, "vellorHandleSyncGetLabel", m_entries.handleSyncGetLabel);
    all &= resolve(m_library, "vellorHandleGetParentContext", m_entries.handleGetParentContext);
    all &= resolve(m_library, "vellorHandleTransferCache", m_entries.handleTransferCache);
    return all;
}

} // namespace Zph::Engine::DynLoad
