#pragma once

#include "common/engine/backendbase.h"

#include <QLibrary>
#include <QString>

namespace Zph::Engine::DynLoad {

/// The entry points of one engine library, in the order in which they are resolved. Null before that.
struct EntryPoints
{
    VellorGetCurrentVersionImplFn getCurrentVersion = nullptr;
    VellorContextInitImplFn contextInit = nullptr;
    VellorContextReleaseFn contextRelease = nullptr;
    VellorContextSetCallbackFn contextSetCallback = nullptr;
    VellorContextMemoryFreeFn contextMemoryFree = nullptr;
    VellorContextRestoreStatesFn contextRestoreStates = nullptr;
    VellorHandleInitFn handleInit = nullptr;
    VellorHandleReleaseFn handleRelease = nullptr;
    VellorHandlePushOutputsFn handlePushOutputs = nullptr;
    VellorHandleFlushFn handleFlush = nullptr;
    VellorHandleStartFn handleStart = nullptr;
    VellorHandleGetStateFn handleGetState = nullptr;
    VellorHandleSwitchHardFn handleSwitchHard = nullptr;
    VellorHandleStopFn handleStop = nullptr;
    VellorHandleGetOutputsFn handleGetOutputs = nullptr;
    VellorHandlePushSetInputFn handlePushSetInput = nullptr;
    VellorHandleGetDescFn handleGetDesc = nullptr;
    VellorHandleGetOutputDescFn handleGetOutputDesc = nullptr;
    VellorHandleGetInputDescFn handleGetInputDesc = nullptr;
    VellorHandleGetInputImageDescFn handleGetInputImageDesc = nullptr;
    VellorHandleSyncSetLabelFn handleSyncSetLabel = nullptr;
    VellorHandleSyncGetLabelFn handleSyncGetLabel = nullptr;
    VellorHandleGetParentContextFn handleGetParentContext = nullptr;
    VellorHandleTransferCacheFn handleTransferCache = nullptr;
};

/// An engine in a shared library of this process. The library stays loaded as long as the object lives.
class BackEndLocal : public BackEndBase
{
public:
    /// To be asked who it is, or to be kept while its file may change: then it is loaded from a hidden copy.
    enum class Use
    {
        Look,
        Keep
    };

    /// Loads the library, if the file is whole, and resolves all 24 entry points. Valid if none is missing
    /// and the engine's version record has the status 0.
    BackEndLocal(const QString& path, Use use);
    ~BackEndLocal() override;
    BackEndLocal(const BackEndLocal&) = delete;
    BackEndLocal& operator=(const BackEndLocal&) = delete;

    /// As it was given to the constructor.
    const QString& path() const { return m_path; }

    /// Any other symbol of the library; null if it has none of that name.
    VellorFunction optionalEntryPoint(const char* symbol) { return m_library.resolve(symbol); }

    bool isValid() const override { return m_valid; }
    void getCurrentVersion(VellorVersion* version, uint32_t apiVersion) const override
    {
        return m_entries.getCurrentVersion(version, apiVersion);
    }
    uint32_t contextInit(VellorContext** context, VellorDevice* device, uint32_t apiVersion,
                         uint32_t reserved) const override
    {
        return m_entries.contextInit(context, device, apiVersion, reserved);
    }
    void contextRelease(VellorContext* context) const override { return m_entries.contextRelease(context); }
    void contextSetCallback(VellorContext* context, uint32_t callbackId,
                            VellorFunction callback) const override
    {
        return m_entries.contextSetCallback(context, callbackId, callback);
    }
    void contextMemoryFree(VellorContext* context, void* block) const override
    {
        return m_entries.contextMemoryFree(context, block);
    }
    void contextRestoreStates(VellorContext* context) const override
    {
        return m_entries.contextRestoreStates(context);
    }
    uint32_t handleInit(VellorHandle** handle, VellorContext* context, const void* data, uint64_t size,
                        const VellorHardResources* resources) const override
    {
        return m_entries.handleInit(handle, context, data, size, resources);
    }
    void handleRelease(VellorHandle* handle) const override { return m_entries.handleRelease(handle); }
    uint32_t handlePushOutputs(VellorHandle* handle, uint32_t flags, const uint32_t* outputs, uint32_t count,
                               void* user) const override
    {
        return m_entries.handlePushOutputs(handle, flags, outputs, count, user);
    }
    uint32_t handleFlush(VellorHandle* handle) const override { return m_entries.handleFlush(handle); }
    uint32_t handleStart(VellorHandle* handle, uint32_t flags) const override
    {
        return m_entries.handleStart(handle, flags);
    }
    void handleGetState(VellorHandle* handle, const void* user, uint32_t* state) const override
    {
        return m_entries.handleGetState(handle, user, state);
    }
    uint32_t handleSwitchHard(VellorHandle* handle, uint32_t flags, const VellorHardResources* resources,
                              void* user) const override
    {
        return m_entries.handleSwitchHard(handle, flags, resources, user);
    }
    void handleStop(VellorHandle* handle, uint32_t mode) const override
    {
        return m_entries.handleStop(handle, mode);
    }
    uint32_t handleGetOutputs(VellorHandle* handle, uint32_t flags, uint32_t outputIndex, uint32_t count,
                              void* out) const override
    {
        return m_entries.handleGetOutputs(handle, flags, outputIndex, count, out);
    }
    uint32_t handlePushSetInput(VellorHandle* handle, uint32_t flags, uint32_t inputIndex, uint32_t inputType,
                                const void* value, void* user) const override
    {
        return m_entries.handlePushSetInput(handle, flags, inputIndex, inputType, value, user);
    }
    uint32_t handleGetDesc(VellorHandle* handle, VellorDataDesc* desc) const override
    {
        return m_entries.handleGetDesc(handle, desc);
    }
    uint32_t handleGetOutputDesc(VellorHandle* handle, uint32_t outputIndex,
                                 VellorOutputDesc* desc) const override
    {
        return m_entries.handleGetOutputDesc(handle, outputIndex, desc);
    }
    uint32_t handleGetInputDesc(VellorHandle* handle, uint32_t inputIndex,
                                VellorInputDesc* desc) const override
    {
        return m_entries.handleGetInputDesc(handle, inputIndex, desc);
    }
    uint32_t handleGetInputImageDesc(VellorHandle* handle, uint32_t inputIndex,
                                     VellorImageRequest* request) const override
    {
        return m_entries.handleGetInputImageDesc(handle, inputIndex, request);
    }
    uint32_t handleSyncSetLabel(VellorHandle* handle, uint32_t label, void* user) const override
    {
        return m_entries.handleSyncSetLabel(handle, label, user);
    }
    uint32_t handleSyncGetLabel(VellorHandle* handle, uint32_t* label) const override
    {
        return m_entries.handleSyncGetLabel(handle, label);
    }
    uint32_t handleGetParentContext(VellorHandle* handle, VellorContext** context) const override
    {
        return m_entries.handleGetParentContext(handle, context);
    }
    uint32_t handleTransferCache(VellorHandle* to, VellorHandle* from, uint32_t flags) const override
    {
        return m_entries.handleTransferCache(to, from, flags);
    }

private:
    void loadLibrary(Use use);
    bool resolveAll();

    QString m_path;
    QLibrary m_library;
    bool m_valid = false;
    EntryPoints m_entries;
};

} // namespace Zph::Engine::DynLoad
