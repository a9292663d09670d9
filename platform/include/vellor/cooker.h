/*
 * The interface of the cooker: from authoring packages to an assembly and its XML description.
 *
 *   vellorCookerContextInit, SetCallback, SetOption
 *   vellorCookerHandleInit, PushPackageFileW, PushIncludeDirA, Cook
 *   vellorCookerHandleGetAssembly, GetIODesc              both are the handle's until its release
 *   vellorCookerHandleRelease, vellorCookerContextRelease
 *
 * Threads: a context and its handle are used by one thread at a time; callbacks come on the calling thread,
 * during the call. Every function but the version returns VELLOR_COOKER_OK or another VellorCookerResult.
 */
#ifndef VELLOR_COOKER_H
#define VELLOR_COOKER_H

#include "base.h"

#ifdef __cplusplus
extern "C" {
#endif

#define VELLOR_COOKER_API_VERSION 0x20000u

typedef struct VellorCookerContext VellorCookerContext; /* opaque, the cooker's */
typedef struct VellorCookerHandle VellorCookerHandle;   /* opaque, the cooker's */

enum VellorCookerResult
{
    VELLOR_COOKER_OK = 0,
    VELLOR_COOKER_ERROR_INVALID_ARGUMENT = 1,
    VELLOR_COOKER_ERROR_OUT_OF_MEMORY = 2,
    VELLOR_COOKER_ERROR_IO = 6,
    VELLOR_COOKER_ERROR_INVALID_DIRECTORY = 7,
    VELLOR_COOKER_ERROR_NO_PACKAGES = 8,
    VELLOR_COOKER_ERROR_NO_DEFAULT_DIRECTORY = 9,
    VELLOR_COOKER_ERROR_FRONT_END = 10,
    VELLOR_COOKER_ERROR_INTERMEDIARY = 11,
    VELLOR_COOKER_ERROR_BACK_END = 12,
    VELLOR_COOKER_ERROR_NO_RESULTS = 13, /* asked for results that were not cooked */
    VELLOR_COOKER_ERROR_API_VERSION = 14,
    VELLOR_COOKER_ERROR_OPEN_ARCHIVE = 15,
    VELLOR_COOKER_ERROR_INVALID_ARCHIVE = 16
};

enum VellorCookerOption
{
    VELLOR_COOKER_OPTION_SIZE_LIMIT =
        2,                           /* largest width and height of a picture, in pixels, a power of two */
    VELLOR_COOKER_OPTION_DYNAMIC = 4 /* VellorCookerDynamic; without the option all of them are fixed */
};

/* What stays an input of the cooked package. */
enum VellorCookerDynamic
{
    VELLOR_COOKER_DYNAMIC_OUTPUT_SIZE = 0x1,
    VELLOR_COOKER_DYNAMIC_RANDOM_SEED = 0x2,
    VELLOR_COOKER_DYNAMIC_PIXEL_SIZE = 0x4
};

enum VellorCookerCallbackId
{
    VELLOR_COOKER_CALLBACK_STAGE = 0,
    VELLOR_COOKER_CALLBACK_MESSAGE = 1
};

enum VellorCookerStage
{
    VELLOR_COOKER_STAGE_LOADING = 0,
    VELLOR_COOKER_STAGE_FLATTENING = 1,
    VELLOR_COOKER_STAGE_FRONT_END = 2,
    VELLOR_COOKER_STAGE_BACK_END = 4
};

/* 0: a stage begins. */
typedef void (*VellorCookerStageCallback)(VellorCookerContext* context, int32_t stage);

/* 1: a message for the user. `level`: 0 note or warning, 1 error, 2 failure of the whole. `text` is UTF-8,
 * for the call. */
typedef void (*VellorCookerMessageCallback)(VellorCookerContext* context, int32_t level, const char* text);

/* The texts are UTF-8, never null, and live as long as the library. */
typedef struct VellorCookerVersion
{
    uint32_t versionMajor;
    uint32_t versionMinor;
    uint32_t versionPatch;
    uint32_t reserved0;
    const char* label;
    const char* date;
    uint32_t buildHash;
    uint32_t reserved1;
} VellorCookerVersion;
VELLOR_CHECK_SIZE(VellorCookerVersion, 40);
VELLOR_CHECK_FIELD(VellorCookerVersion, versionMajor, 0);
VELLOR_CHECK_FIELD(VellorCookerVersion, versionMinor, 4);
VELLOR_CHECK_FIELD(VellorCookerVersion, versionPatch, 8);
VELLOR_CHECK_FIELD(VellorCookerVersion, label, 16);
VELLOR_CHECK_FIELD(VellorCookerVersion, date, 24);
VELLOR_CHECK_FIELD(VellorCookerVersion, buildHash, 32);

/* Fills `version`. Any thread. */
VELLOR_EXPORT void vellorCookerGetCurrentVersion(VellorCookerVersion* version);

/* Makes a context. A failure leaves *context null. */
VELLOR_EXPORT uint32_t vellorCookerContextInit(VellorCookerContext** context, uint32_t apiVersion);

/* Ends a context, whose handles are released already. Null is allowed. */
VELLOR_EXPORT uint32_t vellorCookerContextRelease(VellorCookerContext* context);

/* Registers a callback (VellorCookerCallbackId); null takes it away. */
VELLOR_EXPORT uint32_t vellorCookerContextSetCallback(VellorCookerContext* context, uint32_t callbackId,
                                                      VellorFunction callback);

/* Sets an option (VellorCookerOption) for the cooking to come. */
VELLOR_EXPORT uint32_t vellorCookerContextSetOption(VellorCookerContext* context, uint32_t option,
                                                    uint32_t value);

/* Makes a handle: one cooking. A failure leaves *handle null. */
VELLOR_EXPORT uint32_t vellorCookerHandleInit(VellorCookerHandle** handle, VellorCookerContext* context);

/* Ends a handle, and the results that it gave. Null is allowed. */
VELLOR_EXPORT uint32_t vellorCookerHandleRelease(VellorCookerHandle* handle);

/* Adds an authoring package by its path: zero-terminated, one 32-bit code point a character. The file is
 * read. */
VELLOR_EXPORT uint32_t vellorCookerHandlePushPackageFileW(VellorCookerHandle* handle, const uint32_t* path);

/* Lets packages refer to files of the folder `path` as `alias`://... Both are zero-terminated UTF-8, copied.
 */
VELLOR_EXPORT uint32_t vellorCookerHandlePushIncludeDirA(VellorCookerHandle* handle, const char* alias,
                                                         const char* path);

/* Cooks what was pushed. */
VELLOR_EXPORT uint32_t vellorCookerHandleCook(VellorCookerHandle* handle);

/* *data and *size are the assembly, owned by the handle and valid until its release. */
VELLOR_EXPORT uint32_t vellorCookerHandleGetAssembly(VellorCookerHandle* handle, const void** data,
                                                     uint64_t* size);

/* *xml is the description, zero-terminated UTF-8, owned by the handle and valid until its release. */
VELLOR_EXPORT uint32_t vellorCookerHandleGetIODesc(VellorCookerHandle* handle, const char** xml);

typedef void (*VellorCookerGetCurrentVersionFn)(VellorCookerVersion*);
typedef uint32_t (*VellorCookerContextInitFn)(VellorCookerContext**, uint32_t);
typedef uint32_t (*VellorCookerContextReleaseFn)(VellorCookerContext*);
typedef uint32_t (*VellorCookerContextSetCallbackFn)(VellorCookerContext*, uint32_t, VellorFunction);
typedef uint32_t (*VellorCookerContextSetOptionFn)(VellorCookerContext*, uint32_t, uint32_t);
typedef uint32_t (*VellorCookerHandleInitFn)(VellorCookerHandle**, VellorCookerContext*);
typedef uint32_t (*VellorCookerHandleReleaseFn)(VellorCookerHandle*);
typedef uint32_t (*VellorCookerHandlePushPackageFileWFn)(VellorCookerHandle*, const uint32_t*);
typedef uint32_t (*VellorCookerHandlePushIncludeDirAFn)(VellorCookerHandle*, const char*, const char*);
typedef uint32_t (*VellorCookerHandleCookFn)(VellorCookerHandle*);
typedef uint32_t (*VellorCookerHandleGetAssemblyFn)(VellorCookerHandle*, const void**, uint64_t*);
typedef uint32_t (*VellorCookerHandleGetIODescFn)(VellorCookerHandle*, const char**);

#ifdef __cplusplus
}
#endif

#endif
