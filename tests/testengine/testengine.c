/*
 * An engine that does what its package tells it to (testprogram.h), and writes each call that it gets as a
 * line to the file named by VELLOR_TEST_ENGINE_LOG. Other environment variables, read at each call:
 *
 *   VELLOR_TEST_ENGINE_FAIL=context     vellorContextInitImpl fails with 3
 *   VELLOR_TEST_ENGINE_ID, _STATUS, _REVISION, _LINKER     fields of the version record
 *
 * Everything happens on the calling thread.
 */
#include "testpicture.h"
#include "testprogram.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

struct VellorContext
{
    VellorProgressCallback progress;
    VellorOutputCompleteCallback outputComplete;
    VellorAllocationCallback allocate;
    VellorReleaseCallback release;
    VellorImageInputCallback imageInput;
    VellorCacheStoreCallback cacheStore;
};

struct VellorHandle
{
    VellorContext* context;
    struct Program program;
    uint32_t queue[MAX_ITEMS]; /* output indices */
    uint32_t queued;
    void* user;
    void* imageUser[MAX_ITEMS];
    int isRunning, isStopped;
};

static void note(const char* format, ...)
{
    const char* path = getenv("VELLOR_TEST_ENGINE_LOG");
    FILE* file = path ? fopen(path, "a") : NULL;
    if (!file)
        return;
    va_list arguments;
    va_start(arguments, format);
    vfprintf(file, format, arguments);
    va_end(arguments);
    fputc('\n', file);
    fclose(file);
}

static uint32_t setting(const char* name, uint32_t otherwise)
{
    const char* text = getenv(name);
    return text ? (uint32_t)strtoul(text, NULL, 0) : otherwise;
}

/* ---- The library and its contexts ---- */

void vellorGetCurrentVersionImpl(VellorVersion* version, uint32_t apiVersion)
{
    note("GetCurrentVersion api=0x%x", apiVersion);
    memset(version, 0, sizeof *version);
    version->engineId = setting("VELLOR_TEST_ENGINE_ID", VELLOR_ENGINE_SSE2);
    version->name = "Test Engine";
    version->versionMajor = 1;
    version->versionMinor = 2;
    version->versionPatch = TEST_ENGINE_PATCH;
    version->label = "test";
    version->build = "in C";
    version->buildHash = 0xc0ffee;
    version->status = setting("VELLOR_TEST_ENGINE_STATUS", 0);
    version->interfaceRevision = setting("VELLOR_TEST_ENGINE_REVISION", VELLOR_API_VERSION);
    version->linkerCompatibility = setting("VELLOR_TEST_ENGINE_LINKER", 1);
}

uint32_t vellorContextInitImpl(VellorContext** context, VellorDevice* device, uint32_t apiVersion,
                               uint32_t reserved)
{
    const char* fail = getenv("VELLOR_TEST_ENGINE_FAIL");
    note("ContextInit api=0x%x device=%u reserved=%u", apiVersion, device->flags, reserved);
    if (fail && strcmp(fail, "context") == 0)
        return VELLOR_ERROR_API_VERSION;
    *context = calloc(1, sizeof **context);
    return VELLOR_OK;
}

void vellorContextRelease(VellorContext* context)
{
    note("ContextRelease");
    free(context);
}

void vellorContextSetCallback(VellorContext* context, uint32_t callbackId, VellorFunction callback)
{
    note("ContextSetCallback id=%u set=%d", callbackId, callback != NULL);
    switch (callbackId) {
    case VELLOR_CALLBACK_PROGRESS:
        context->progress = (VellorProgressCallback)callback;
        break;
    case VELLOR_CALLBACK_OUTPUT_COMPLETE:
        context->outputComplete = (VellorOutputCompleteCallback)callback;
        break;
    case VELLOR_CALLBACK_ALLOCATION:
        context->allocate = (VellorAllocationCallback)callback;
        break;
    case VELLOR_CALLBACK_RELEASE:
        context->release = (VellorReleaseCallback)callback;
        break;
    case VELLOR_CALLBACK_IMAGE_INPUT:
        context->imageInput = (VellorImageInputCallback)callback;
        break;
    case VELLOR_CALLBACK_CACHE_STORE:
        context->cacheStore = (VellorCacheStoreCallback)callback;
        break;
    }
}

void vellorContextMemoryFree(VellorContext* context, void* block)
{
    (void)context;
    note("ContextMemoryFree");
    free(block);
}

void vellorContextRestoreStates(VellorContext* context)
{
    (void)context;
    note("ContextRestoreStates");
}

/* ---- The handle and its queue ---- */

static int others_are_zero(const VellorHardResources* resources)
{
    VellorHardResources expected;
    memset(&expected, 0, sizeof expected);
    expected.memoryBudget = resources->memoryBudget;
    expected.videoMemoryBudget = resources->videoMemoryBudget;
    return memcmp(&expected, resources, sizeof expected) == 0;
}

uint32_t vellorHandleInit(VellorHandle** handle, VellorContext* context, const void* data, uint64_t size,
                          const VellorHardResources* resources)
{
    note("HandleInit size=%llu aligned=%d memory=%llu video=%llu zeros=%d", (unsigned long long)size,
         (uintptr_t)data % 16 == 0, (unsigned long long)resources->memoryBudget,
         (unsigned long long)resources->videoMemoryBudget, others_are_zero(resources));
    VellorHandle* made = calloc(1, sizeof *made);
    program_parse(&made->program, data, size);
    const uint32_t failure = made->program.failHandle;
    if (failure) {
        free(made);
        return failure;
    }
    made->context = context;
    *handle = made;
    return VELLOR_OK;
}

void vellorHandleRelease(VellorHandle* handle)
{
    note("HandleRelease");
    free(handle);
}

static int output_of_uid(const struct Program* program, uint32_t uid)
{
    for (uint32_t i = 0; i < program->outputsCount; ++i)
        if (program->outputs[i].uid == uid)
            return (int)i;
    return -1;
}

uint32_t vellorHandlePushOutputs(VellorHandle* handle, uint32_t flags, const uint32_t* outputs,
                                 uint32_t count, void* user)
{
    char list[1024] = "";
    for (uint32_t i = 0; i < count && strlen(list) + 16 < sizeof list; ++i)
        sprintf(list + strlen(list), "%s%u", i ? "," : "", outputs[i]);
    note("PushOutputs flags=0x%x outputs=%s user=%d", flags, list, user != NULL);
    const uint32_t failure = flags & VELLOR_PUSH_HINT ? handle->program.failHint : handle->program.failPush;
    if (failure || flags & VELLOR_PUSH_HINT)
        return failure;
    for (uint32_t i = 0; i < count && handle->queued < MAX_ITEMS; ++i) {
        const int index =
            flags & VELLOR_PUSH_UIDS ? output_of_uid(&handle->program, outputs[i]) : (int)outputs[i];
        if (index < 0 || (uint32_t)index >= handle->program.outputsCount)
            return VELLOR_ERROR_UNKNOWN_INDEX;
        handle->queue[handle->queued++] = (uint32_t)index;
    }
    handle->user = user;
    return VELLOR_OK;
}

uint32_t vellorHandleFlush(VellorHandle* handle)
{
    note("Flush");
    handle->queued = 0;
    return handle->program.failFlush;
}

static void describe_value(char* text, uint32_t type, const void* value)
{
    static const uint32_t components[] = {1, 2, 3, 4, 1, 0, 0, 0, 2, 3, 4};
    const uint32_t* words = value;
    text[0] = 0;
    if (!value) {
        strcpy(text, "null");
    } else if (type == VELLOR_TYPE_IMAGE) {
        const VellorTexture* texture = value;
        sprintf(text, "%ux%u format=%u order=%u", texture->width, texture->height, texture->pixelFormat,
                texture->channelOrder);
    } else if (type == VELLOR_TYPE_STRING) {
        for (uint32_t i = 0; words[i] && i < 32; ++i)
            sprintf(text + strlen(text), "%sU+%04X", i ? "," : "", words[i]);
    } else {
        for (uint32_t i = 0; type <= VELLOR_TYPE_INTEGER4 && i < components[type]; ++i)
            sprintf(text + strlen(text), "%s%08x", i ? "," : "", words[i]);
    }
}

uint32_t vellorHandlePushSetInput(VellorHandle* handle, uint32_t flags, uint32_t inputIndex,
                                  uint32_t inputType, const void* value, void* user)
{
    char text[512];
    describe_value(text, inputType, value);
    note("PushSetInput flags=0x%x index=%u type=%u value=%s user=%d", flags, inputIndex, inputType, text,
         user != NULL);
    if (inputIndex >= handle->program.inputsCount)
        return VELLOR_ERROR_UNKNOWN_INDEX;
    if (flags & VELLOR_PUSH_HINT)
        return handle->program.failHint;
    if (inputType != handle->program.inputs[inputIndex].type)
        return VELLOR_ERROR_TYPE;
    handle->imageUser[inputIndex] = user;
    return VELLOR_OK;
}

/* ---- Computing ---- */

static void burn(uint32_t milliseconds)
{
    const clock_t until = clock() + (clock_t)milliseconds * (CLOCKS_PER_SEC / 1000);
    while (clock() < until)
        ;
}

static void run_progress(VellorHandle* handle)
{
    for (uint32_t i = 0; handle->program.progressTotal && i <= handle->program.progressTotal; ++i) {
        burn(handle->program.progressBurn);
        if (handle->context->progress)
            handle->context->progress(handle, i, handle->program.progressTotal);
    }
}

static void read_back(VellorHandle* handle, uint32_t flags, uint32_t entry)
{
    char block[9] = "untouchd";
    handle->context->cacheStore(handle, flags, entry, block, 8);
    note("CacheStore flags=%u entry=%u data=%s", flags, entry, block);
}

static void run_cache(VellorHandle* handle)
{
    char first[] = "parked-7", second[] = "parked-9";
    if (!handle->program.useCache || !handle->context->cacheStore)
        return;
    handle->context->cacheStore(handle, VELLOR_CACHE_WRITE, 7, first, 8);
    handle->context->cacheStore(handle, VELLOR_CACHE_WRITE, 9, second, 8);
    read_back(handle, VELLOR_CACHE_READ, 7);
    read_back(handle, VELLOR_CACHE_READ | VELLOR_CACHE_REMOVE, 9);
    read_back(handle, VELLOR_CACHE_READ, 9);
    read_back(handle, VELLOR_CACHE_READ, 7);
}

static void run_image_inputs(VellorHandle* handle)
{
    for (uint32_t i = 0; i < handle->program.inputsCount; ++i) {
        const struct Input* input = &handle->program.inputs[i];
        if (input->type != VELLOR_TYPE_IMAGE || !handle->context->imageInput)
            continue;
        VellorImageRequest request = {32, 16, 0, 1, {0}};
        void* slot = handle->imageUser[i];
        handle->context->imageInput(handle, i, input->uid, &slot, &request);
        note("ImageInput index=%u kept=%d", i, slot == handle->imageUser[i]);
    }
}

uint32_t vellorHandleStart(VellorHandle* handle, uint32_t flags)
{
    note("Start flags=%u", flags);
    if (handle->program.failStart)
        return handle->program.failStart;
    handle->isRunning = 1;
    handle->isStopped = 0;
    run_image_inputs(handle);
    run_cache(handle);
    run_progress(handle);
    for (uint32_t i = 0; i < handle->queued && !handle->isStopped; ++i)
        if (handle->context->outputComplete)
            handle->context->outputComplete(handle, handle->queue[i], handle->user);
    handle->queued = 0;
    handle->isRunning = 0;
    return VELLOR_OK;
}

void vellorHandleGetState(VellorHandle* handle, const void* user, uint32_t* state)
{
    note("GetState user=%d", user != NULL);
    *state = handle->isRunning ? VELLOR_STATE_RUNNING : 0;
}

void vellorHandleStop(VellorHandle* handle, uint32_t mode)
{
    note("Stop mode=%u", mode);
    handle->isStopped = 1;
}

static void fetch_picture(VellorHandle* handle, const struct Output* output, VellorTexture* texture)
{
    const uint64_t size = picture_size(output->width, output->height, output->format);
    texture->buffer = handle->context->allocate(size, 64);
    note("Allocate multiple=%d", (uintptr_t)texture->buffer % 64 == 0);
    texture->width = (uint16_t)output->width;
    texture->height = (uint16_t)output->height;
    texture->pixelFormat = (uint8_t)output->format;
    texture->channelOrder = (uint8_t)output->order;
    picture_fill(texture->buffer, output->width, output->height, output->format);
}

static void fetch_number(const struct Output* output, void* out)
{
    for (uint32_t i = 0; i < 4; ++i) {
        const float real = (float)(output->uid + i);
        const int32_t whole = (int32_t)(output->uid + i);
        memcpy((char*)out + 4 * i, output->type < VELLOR_TYPE_INTEGER ? (const void*)&real : &whole, 4);
    }
}

uint32_t vellorHandleGetOutputs(VellorHandle* handle, uint32_t flags, uint32_t outputIndex, uint32_t count,
                                void* out)
{
    note("GetOutputs flags=0x%x index=%u count=%u", flags, outputIndex, count);
    if (outputIndex >= handle->program.outputsCount)
        return VELLOR_ERROR_UNKNOWN_INDEX;
    const struct Output* output = &handle->program.outputs[outputIndex];
    if (output->fetchError)
        return output->fetchError;
    if ((flags == VELLOR_FETCH_NUMERIC) != (output->type != VELLOR_TYPE_IMAGE))
        return VELLOR_ERROR_TYPE;
    if (flags)
        fetch_number(output, out);
    else
        fetch_picture(handle, output, out);
    return VELLOR_OK;
}

/* ---- Descriptions ---- */

uint32_t vellorHandleGetDesc(VellorHandle* handle, VellorDataDesc* desc)
{
    note("GetDesc");
    desc->outputsCount = handle->program.outputsCount;
    desc->inputsCount = handle->program.inputsCount;
    return handle->program.failDesc;
}

uint32_t vellorHandleGetOutputDesc(VellorHandle* handle, uint32_t outputIndex, VellorOutputDesc* desc)
{
    note("GetOutputDesc index=%u", outputIndex);
    if (outputIndex >= handle->program.outputsCount)
        return VELLOR_ERROR_UNKNOWN_INDEX;
    const struct Output* output = &handle->program.outputs[outputIndex];
    memset(desc, 0, sizeof *desc);
    desc->uid = output->uid;
    desc->width = output->isDynamic ? 0 : output->width;
    desc->height = output->isDynamic ? 0 : output->height;
    desc->pixelFormat = (uint8_t)output->format;
    desc->mipmapsCount = 1;
    desc->type = output->type;
    return VELLOR_OK;
}

uint32_t vellorHandleGetInputDesc(VellorHandle* handle, uint32_t inputIndex, VellorInputDesc* desc)
{
    note("GetInputDesc index=%u", inputIndex);
    if (inputIndex >= handle->program.inputsCount)
        return VELLOR_ERROR_UNKNOWN_INDEX;
    const struct Input* input = &handle->program.inputs[inputIndex];
    desc->uid = input->uid;
    desc->type = input->type;
    desc->defaultValue = input->type == VELLOR_TYPE_IMAGE ? NULL : input->value;
    return VELLOR_OK;
}

/* ---- Resolved by every host, called by none ---- */

uint32_t vellorHandleSwitchHard(VellorHandle* handle, uint32_t flags, const VellorHardResources* resources,
                                void* user)
{
    (void)handle, (void)flags, (void)resources, (void)user;
    note("SwitchHard");
    return VELLOR_ERROR_NOT_SUPPORTED;
}

uint32_t vellorHandleGetInputImageDesc(VellorHandle* handle, uint32_t inputIndex, VellorImageRequest* request)
{
    (void)handle, (void)inputIndex, (void)request;
    note("GetInputImageDesc");
    return VELLOR_ERROR_NOT_SUPPORTED;
}

uint32_t vellorHandleSyncSetLabel(VellorHandle* handle, uint32_t label, void* user)
{
    (void)handle, (void)label, (void)user;
    note("SyncSetLabel");
    return VELLOR_ERROR_NOT_SUPPORTED;
}

uint32_t vellorHandleSyncGetLabel(VellorHandle* handle, uint32_t* label)
{
    (void)handle, (void)label;
    note("SyncGetLabel");
    return VELLOR_ERROR_NOT_SUPPORTED;
}

uint32_t vellorHandleGetParentContext(VellorHandle* handle, VellorContext** context)
{
    note("GetParentContext");
    *context = handle->context;
    return VELLOR_OK;
}

#ifndef TEST_ENGINE_NO_TRANSFER_CACHE
uint32_t vellorHandleTransferCache(VellorHandle* to, VellorHandle* from, uint32_t flags)
{
    (void)to, (void)from, (void)flags;
    note("TransferCache");
    return VELLOR_ERROR_NOT_SUPPORTED;
}
#endif
