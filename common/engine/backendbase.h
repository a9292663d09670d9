#pragma once

#include <vellor/engine.h>

namespace Zph::Engine::DynLoad {

/// The binding to one engine: an operation for each entry point of <vellor/engine.h>, where their arguments,
/// results, threads and ownership are told. Only to be called while isValid() is true.
class BackEndBase
{
public:
    virtual ~BackEndBase() = default;

    virtual bool isValid() const = 0;
    virtual void getCurrentVersion(VellorVersion* version, uint32_t apiVersion) const = 0;
    virtual uint32_t contextInit(VellorContext** context, VellorDevice* device, uint32_t apiVersion,
                                 uint32_t reserved) const = 0;
    virtual void contextRelease(VellorContext* context) const = 0;
    virtual void contextSetCallback(VellorContext* context, uint32_t callbackId,
                                    VellorFunction callback) const = 0;
    virtual void contextMemoryFree(VellorContext* context, void* block) const = 0;
    virtual void contextRestoreStates(VellorContext* context) const = 0;
    virtual uint32_t handleInit(VellorHandle** handle, VellorContext* context, const void* data,
                                uint64_t size, const VellorHardResources* resources) const = 0;
    virtual void handleRelease(VellorHandle* handle) const = 0;
    virtual uint32_t handlePushOutputs(VellorHandle* handle, uint32_t flags, const uint32_t* outputs,
                                       uint32_t count, void* user) const = 0;
    virtual uint32_t handleFlush(VellorHandle* handle) const = 0;
    virtual uint32_t handleStart(VellorHandle* handle, uint32_t flags) const = 0;
    virtual void handleGetState(VellorHandle* handle, const void* user, uint32_t* state) const = 0;
    virtual uint32_t handleSwitchHard(VellorHandle* handle, uint32_t flags,
                                      const VellorHardResources* resources, void* user) const = 0;
    virtual void handleStop(VellorHandle* handle, uint32_t mode) const = 0;
    virtual uint32_t handleGetOutputs(VellorHandle* handle, uint32_t flags, uint32_t outputIndex,
                                      uint32_t count, void* out) const = 0;
    virtual uint32_t handlePushSetInput(VellorHandle* handle, uint32_t flags, uint32_t inputIndex,
                                        uint32_t inputType, const void* value, void* user) const = 0;
    virtual uint32_t handleGetDesc(VellorHandle* handle, VellorDataDesc* desc) const = 0;
    virtual uint32_t handleGetOutputDesc(VellorHandle* handle, uint32_t outputIndex,
                                         VellorOutputDesc* desc) const = 0;
    virtual uint32_t handleGetInputDesc(VellorHandle* handle, uint32_t inputIndex,
                                        VellorInputDesc* desc) const = 0;
    virtual uint32_t handleGetInputImageDesc(VellorHandle* handle, uint32_t inputIndex,
                                             VellorImageRequest* request) const = 0;
    virtual uint32_t handleSyncSetLabel(VellorHandle* handle, uint32_t label, void* user) const = 0;
    virtual uint32_t handleSyncGetLabel(VellorHandle* handle, uint32_t* label) const = 0;
    virtual uint32_t handleGetParentContext(VellorHandle* handle, VellorContext** context) const = 0;
    virtual uint32_t handleTransferCache(VellorHandle* to, VellorHandle* from, uint32_t flags) const = 0;
};

} // namespace Zph::Engine::DynLoad
