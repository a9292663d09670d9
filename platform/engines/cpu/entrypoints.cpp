// The functions of the engine interface, and of its addition for profiles, but for the version, which is the
// plug-in's. They check pointers, keep exceptions in, and leave the rest to Context and Handle;
// <vellor/engine.h> says what each of them does.

#include "platform/engines/cpu/entrypoints.h"

#include "platform/engines/cpu/handle.h"
#include "platform/program/programreader.h"

#include <vellor/engine.h>
#include <vellor/profile.h>

#include <new>
#include <string>
#include <utility>

using namespace vellor::cpu;

namespace {

/// The result of `body`, or the code for what it threw. `arguments`: whether the pointers are there at all.
template<class Body> std::uint32_t guarded(bool arguments, Body body) noexcept
{
    if (!arguments)
        return VELLOR_ERROR_INVALID_ARGUMENT;
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return VELLOR_ERROR_OUT_OF_MEMORY;
    } catch (...) {
        return VELLOR_ERROR_INVALID_DATA;
    }
}

} // namespace

extern "C" {

uint32_t vellorContextInitImpl(VellorContext** context, VellorDevice* device, uint32_t apiVersion, uint32_t)
{
    return guarded(context && device && device->flags == 0, [&]() -> std::uint32_t {
        if (!serves(apiVersion))
            return VELLOR_ERROR_API_VERSION;
        auto made = std::make_shared<VellorContext>();
        made->kinds = [](std::uint32_t id) { return vellor::nodes::findNode(id); };
        made->self = made;
        *context = made.get();
        return VELLOR_OK;
    });
}

void vellorContextRelease(VellorContext* context)
{
    if (context)
        const auto last = std::move(context->self); // not assigned null: the context may end with this line
}

void vellorContextSetCallback(VellorContext* context, uint32_t callbackId, VellorFunction callback)
{
    if (context)
        context->callbacks.set(callbackId, callback);
}

void vellorContextMemoryFree(VellorContext* context, void* block)
{
    if (context)
        context->callbacks.free(block);
}

void vellorContextRestoreStates(VellorContext*)
{
    // The processor has no states that a host could have changed.
}

uint32_t vellorHandleInit(VellorHandle** handle, VellorContext* context, const void* data, uint64_t size,
                          const VellorHardResources* resources)
{
    return guarded(handle && context, [&]() -> std::uint32_t {
        if (!data)
            return VELLOR_ERROR_INVALID_DATA;
        std::string error;
        auto program = vellor::program::readProgram({static_cast<const std::uint8_t*>(data), size}, error);
        if (!program)
            return VELLOR_ERROR_INVALID_DATA;
        return makeHandle(handle, *context, std::move(*program), Resources::read(resources));
    });
}

void vellorHandleRelease(VellorHandle* handle)
{
    if (!handle)
        return;
    if (handle->running())
        handle->abandon();
    else
        delete handle;
}

uint32_t vellorHandlePushOutputs(VellorHandle* handle, uint32_t flags, const uint32_t* outputs,
                                 uint32_t count, void* user)
{
    return guarded(handle, [&] { return handle->pushOutputs(flags, outputs, count, user); });
}

uint32_t vellorHandleFlush(VellorHandle* handle)
{
    return guarded(handle, [&] { return handle->flush(); });
}

uint32_t vellorHandleStart(VellorHandle* handle, uint32_t)
{
    if (!handle)
        return VELLOR_ERROR_INVALID_ARGUMENT;
    const uint32_t result = guarded(true, [&] { return handle->start(); });
    if (handle->abandoned() && !handle->running())
        delete handle;
    return result;
}

void vellorHandleGetState(VellorHandle* handle, const void*, uint32_t* state)
{
    if (handle && state)
        *state = handle->running() ? VELLOR_STATE_RUNNING : 0;
}

uint32_t vellorHandleSwitchHard(VellorHandle* handle, uint32_t, const VellorHardResources* resources, void*)
{
    return guarded(handle && resources, [&] { return handle->switchHard(Resources::read(resources)); });
}

void vellorHandleStop(VellorHandle* handle, uint32_t)
{
    if (handle)
        handle->stop();
}

uint32_t vellorHandleGetOutputs(VellorHandle* handle, uint32_t flags, uint32_t outputIndex, uint32_t count,
                                void* out)
{
    return guarded(handle && out, [&] { return handle->outputs(flags, outputIndex, count, out); });
}

uint32_t vellorHandlePushSetInput(VellorHandle* handle, uint32_t flags, uint32_t inputIndex,
                                  uint32_t inputType, const void* value, void* user)
{
    return guarded(handle, [&] { return handle->pushInput(flags, inputIndex, inputType, value, user); });
}

uint32_t vellorHandleGetDesc(VellorHandle* handle, VellorDataDesc* desc)
{
    if (!handle || !desc)
        return VELLOR_ERROR_INVALID_ARGUMENT;
    *desc = handle->desc();
    return VELLOR_OK;
}

uint32_t vellorHandleGetOutputDesc(VellorHandle* handle, uint32_t outputIndex, VellorOutputDesc* desc)
{
    return guarded(handle && desc, [&] { return handle->outputDesc(outputIndex, *desc); });
}

uint32_t vellorHandleGetInputDesc(VellorHandle* handle, uint32_t inputIndex, VellorInputDesc* desc)
{
    return guarded(handle && desc, [&] { return handle->inputDesc(inputIndex, *desc); });
}

uint32_t vellorHandleGetInputImageDesc(VellorHandle* handle, uint32_t inputIndex, VellorImageRequest* request)
{
    return guarded(handle && request, [&] { return handle->imageRequest(inputIndex, *request); });
}

uint32_t vellorHandleSyncSetLabel(VellorHandle* handle, uint32_t label, void*)
{
    return guarded(handle, [&] { return handle->pushLabel(label); });
}

uint32_t vellorHandleSyncGetLabel(VellorHandle* handle, uint32_t* label)
{
    if (!handle || !label)
        return VELLOR_ERROR_INVALID_ARGUMENT;
    *label = handle->label();
    return VELLOR_OK;
}

uint32_t vellorHandleGetParentContext(VellorHandle* handle, VellorContext** context)
{
    if (!handle || !context)
        return VELLOR_ERROR_INVALID_ARGUMENT;
    *context = handle->context();
    return VELLOR_OK;
}

uint32_t vellorHandleTransferCache(VellorHandle* to, VellorHandle* from, uint32_t)
{
    return guarded(to && from, [&] { return to->transferCache(*from); });
}

uint32_t vellorHandleSetProfile(VellorHandle* handle, VellorProfileCallback callback, void* user)
{
    return guarded(handle, [&] { return handle->setProfile(callback, user); });
}

} // extern "C"

namespace vellor::cpu {

bool serves(std::uint32_t apiVersion)
{
    return apiVersion > VELLOR_INTERFACE_REVISION_BELOW && apiVersion <= VELLOR_API_VERSION;
}

std::uint32_t makeHandle(VellorHandle** handle, VellorContext& context, program::Program program,
                         const Resources& resources)
{
    std::unique_ptr<Package> package = Package::make(std::move(program), context.kinds);
    if (!package)
        return VELLOR_ERROR_INVALID_DATA;
    *handle = new VellorHandle(context.self, std::move(package), resources);
    return VELLOR_OK;
}

} // namespace vellor::cpu
