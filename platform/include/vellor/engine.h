/*
 * The interface of a rendering engine.
 *
 * An engine is a shared library that exports the 24 functions declared below; a library that misses one of
 * them is not an engine. The host puts every file of its folder plugins/engines to the test, so the file
 * name is free. This header is all that it takes to write one.
 *
 * The life of an engine in the host:
 *
 *   vellorGetCurrentVersionImpl       may be called on a library that is loaded for this question alone
 *   vellorContextInitImpl             one context for each open package
 *   vellorContextSetCallback          for the callbacks 2, 0, 9, 11, 5, 6, in this order
 *   vellorHandleInit, GetDesc         one handle on the binary image; GetInputDesc and GetOutputDesc follow
 *   then, for each generation:
 *     vellorHandleFlush, GetState     what was pushed and not yet computed is dropped
 *     vellorHandlePushSetInput        for each input that changed
 *     vellorHandlePushOutputs         the outputs that somebody looks at
 *     vellorHandlePushSetInput, vellorHandlePushOutputs     with VELLOR_PUSH_HINT: what to keep in the cache
 *     vellorContextRestoreStates
 *     vellorHandleStart               computes; calls back for progress and for each finished output,
 *                                     and the host calls vellorHandleGetOutputs from that callback
 *   vellorHandleRelease, vellorContextRelease, and the library may be unloaded
 *
 * Threads: the host calls one function of a context at a time. Callbacks come on the thread that called
 * vellorHandleStart, while that call lasts, or from the call whose work needs them; the host's callbacks
 * take no locks. vellorHandleStop and vellorHandleGetState alone may come from another thread, or from
 * inside a callback, during vellorHandleStart. No exception leaves a function or a callback.
 *
 * Results: a function that returns a number returns VELLOR_OK or a code of its own choice above it, which
 * the host shows to the user as a number. The codes below are what the project's own engine uses.
 */
#ifndef VELLOR_ENGINE_H
#define VELLOR_ENGINE_H

#include "base.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Passed wherever an API version is asked for. */
#define VELLOR_API_VERSION 0x10009u
/* VellorVersion::interfaceRevision must be above this for the host to use the engine. */
#define VELLOR_INTERFACE_REVISION_BELOW 0x10007u

typedef struct VellorContext VellorContext; /* opaque, the engine's */
typedef struct VellorHandle VellorHandle;   /* opaque, the engine's */

/* ---- Numbers ---------------------------------------------------------------------------------------- */

enum VellorResult
{
    VELLOR_OK = 0,
    VELLOR_ERROR_INVALID_ARGUMENT = 1,
    VELLOR_ERROR_OUT_OF_MEMORY = 2,
    VELLOR_ERROR_API_VERSION = 3,   /* the engine does not serve this API version */
    VELLOR_ERROR_INVALID_DATA = 4,  /* the binary image is damaged or of another version */
    VELLOR_ERROR_UNKNOWN_INDEX = 5, /* no such input or output */
    VELLOR_ERROR_NOT_COMPUTED = 6,  /* the output has no result to fetch */
    VELLOR_ERROR_NOT_SUPPORTED = 7, /* this engine does not offer the operation */
    VELLOR_ERROR_BUSY = 8,          /* the call is not allowed during vellorHandleStart */
    VELLOR_ERROR_CACHE_STORE = 9,   /* a parked block did not come back whole */
    VELLOR_ERROR_TYPE = 12          /* the type is not the one that the input or output has */
};

/* VellorVersion::engineId. Others are allowed and have no description in the host. */
enum VellorEngineId
{
    VELLOR_ENGINE_DIRECT3D10 = 7,
    VELLOR_ENGINE_DIRECT3D11 = 11,
    VELLOR_ENGINE_OPENGL3 = 12, /* the only one that is given a share of the video memory */
    VELLOR_ENGINE_SSE2 = 19     /* runs on the processor */
};

/* Types of inputs and outputs. 7 is not used. An output of type 6 can't be fetched. */
enum VellorType
{
    VELLOR_TYPE_FLOAT = 0,
    VELLOR_TYPE_FLOAT2 = 1,
    VELLOR_TYPE_FLOAT3 = 2,
    VELLOR_TYPE_FLOAT4 = 3,
    VELLOR_TYPE_INTEGER = 4,
    VELLOR_TYPE_IMAGE = 5,
    VELLOR_TYPE_STRING = 6,
    VELLOR_TYPE_INTEGER2 = 8,
    VELLOR_TYPE_INTEGER3 = 9,
    VELLOR_TYPE_INTEGER4 = 10
};

/*
 * The pixel format byte. Bits 0 and 1 are the family. In the raw family the layout and the depth are
 * added: VELLOR_FORMAT_GRAYSCALE | VELLOR_FORMAT_16BITS. The codes of the other families are whole.
 * A raw pixel holds its channels in the order of VellorTexture::channelOrder, a grayscale pixel one
 * channel, an RGB pixel three; rows follow each other from the top without padding.
 */
enum VellorFormat
{
    VELLOR_FORMAT_FAMILY_MASK = 0x03,
    VELLOR_FORMAT_FAMILY_RAW = 0,
    VELLOR_FORMAT_FAMILY_COMPRESSED = 1,
    VELLOR_FORMAT_FAMILY_JPEG = 2,
    VELLOR_FORMAT_FAMILY_MOBILE = 3,

    VELLOR_FORMAT_LAYOUT_MASK = 0x0c,
    VELLOR_FORMAT_RGBA = 0x00,
    VELLOR_FORMAT_RGBX = 0x04, /* four channels, the fourth without meaning */
    VELLOR_FORMAT_RGB = 0x08,  /* three channels; shown by the host as not supported */
    VELLOR_FORMAT_GRAYSCALE = 0x0c,

    VELLOR_FORMAT_DEPTH_MASK = 0x50,
    VELLOR_FORMAT_8BITS = 0x00,
    VELLOR_FORMAT_16BITS = 0x10,
    VELLOR_FORMAT_32FLOAT = 0x40,
    VELLOR_FORMAT_16FLOAT = 0x50,

    VELLOR_FORMAT_BC1 = 1,
    VELLOR_FORMAT_BC2 = 5,
    VELLOR_FORMAT_BC2_STRAIGHT = 9, /* colour not multiplied by alpha */
    VELLOR_FORMAT_BC3 = 13,
    VELLOR_FORMAT_BC3_STRAIGHT = 17,
    VELLOR_FORMAT_BC5 = 21,
    VELLOR_FORMAT_BC4 = 25,
    VELLOR_FORMAT_JPEG = 2,
    VELLOR_FORMAT_PVRTC2 = 3,
    VELLOR_FORMAT_PVRTC4 = 7,
    VELLOR_FORMAT_ETC1 = 11,

    VELLOR_FORMAT_SRGB = 0x20 /* added in any family: colour channels are sRGB encoded */
};

/*
 * VellorTexture::channelOrder: bits 2i and 2i+1 tell which channel of the buffer (0 to 3) is
 * destination channel i (0 red, 1 green, 2 blue, 3 alpha).
 */
enum VellorChannelOrder
{
    VELLOR_ORDER_RGBA = 228,
    VELLOR_ORDER_BGRA = 198
};

/* Flags of vellorHandlePushOutputs, vellorHandlePushSetInput and vellorHandleGetOutputs. */
enum VellorFlags
{
    VELLOR_PUSH_UIDS =
        0x002, /* PushOutputs: the array holds output uids, not indices; always set by the host */
    VELLOR_PUSH_HINT = 0x800,   /* a hint for the cache, to be computed by nobody */
    VELLOR_FETCH_NUMERIC = 0x10 /* GetOutputs: numbers are wanted, not a texture */
};

/* Bits of the state that vellorHandleGetState gives. */
enum VellorState
{
    VELLOR_STATE_RUNNING = 0x1
};

/* Mode of vellorHandleStop. */
enum VellorStopMode
{
    VELLOR_STOP_ASYNCHRONOUS = 0,
    VELLOR_STOP_DEFAULT = 1
};

/* ---- Records ---------------------------------------------------------------------------------------- */

/* What an engine says of itself. The texts are UTF-8, never null, and live as long as the library is loaded.
 */
typedef struct VellorVersion
{
    uint32_t engineId; /* VellorEngineId */
    uint32_t reserved0;
    const char* name;
    uint32_t versionMajor;
    uint32_t versionMinor;
    uint32_t versionPatch;
    uint32_t reserved1;
    const char* label;          /* shown behind the version as "-label"; empty for none */
    const char* build;          /* free text on the build, such as its date */
    uint32_t buildHash;         /* shown as 8 hexadecimal digits */
    uint32_t status;            /* 0, or the library is refused */
    uint32_t interfaceRevision; /* VELLOR_API_VERSION; above VELLOR_INTERFACE_REVISION_BELOW */
    uint32_t
        linkerCompatibility; /* equals VellorLinkerEngineDesc::linkerCompatibility of the linker's entry */
} VellorVersion;
VELLOR_CHECK_SIZE(VellorVersion, 64);
VELLOR_CHECK_FIELD(VellorVersion, engineId, 0);
VELLOR_CHECK_FIELD(VellorVersion, name, 8);
VELLOR_CHECK_FIELD(VellorVersion, versionMajor, 16);
VELLOR_CHECK_FIELD(VellorVersion, versionMinor, 20);
VELLOR_CHECK_FIELD(VellorVersion, versionPatch, 24);
VELLOR_CHECK_FIELD(VellorVersion, label, 32);
VELLOR_CHECK_FIELD(VellorVersion, build, 40);
VELLOR_CHECK_FIELD(VellorVersion, buildHash, 48);
VELLOR_CHECK_FIELD(VellorVersion, status, 52);
VELLOR_CHECK_FIELD(VellorVersion, interfaceRevision, 56);
VELLOR_CHECK_FIELD(VellorVersion, linkerCompatibility, 60);

/* The device that a context is made on. An engine on the processor needs nothing of it. */
typedef struct VellorDevice
{
    uint32_t reserved; /* not set by the host: do not read */
    uint32_t flags;    /* 0 */
} VellorDevice;
VELLOR_CHECK_SIZE(VellorDevice, 8);
VELLOR_CHECK_FIELD(VellorDevice, flags, 4);

/* The resources that a handle may use. What is 0 is the engine's own choice: processors, threads. */
typedef struct VellorHardResources
{
    uint8_t reserved0[72];
    uint64_t memoryBudget;      /* bytes of main memory */
    uint64_t videoMemoryBudget; /* bytes of video memory; set for VELLOR_ENGINE_OPENGL3 only */
    uint8_t reserved1[24];
} VellorHardResources;
VELLOR_CHECK_SIZE(VellorHardResources, 112);
VELLOR_CHECK_FIELD(VellorHardResources, memoryBudget, 72);
VELLOR_CHECK_FIELD(VellorHardResources, videoMemoryBudget, 80);

/* What a binary image holds. */
typedef struct VellorDataDesc
{
    uint32_t outputsCount; /* above 0, or the host refuses the package */
    uint32_t inputsCount;
    uint32_t reserved;
} VellorDataDesc;
VELLOR_CHECK_SIZE(VellorDataDesc, 12);
VELLOR_CHECK_FIELD(VellorDataDesc, outputsCount, 0);
VELLOR_CHECK_FIELD(VellorDataDesc, inputsCount, 4);

typedef struct VellorOutputDesc
{
    uint32_t uid;         /* stable identifier of the output */
    uint32_t width;       /* of level 0; 0 when the size depends on inputs */
    uint32_t height;      /* of level 0 */
    uint8_t pixelFormat;  /* VellorFormat */
    uint8_t mipmapsCount; /* levels, level 0 included */
    uint8_t reserved0[6];
    uint32_t type; /* VellorType */
    uint8_t reserved1[8];
} VellorOutputDesc;
VELLOR_CHECK_SIZE(VellorOutputDesc, 32);
VELLOR_CHECK_FIELD(VellorOutputDesc, uid, 0);
VELLOR_CHECK_FIELD(VellorOutputDesc, width, 4);
VELLOR_CHECK_FIELD(VellorOutputDesc, height, 8);
VELLOR_CHECK_FIELD(VellorOutputDesc, pixelFormat, 12);
VELLOR_CHECK_FIELD(VellorOutputDesc, mipmapsCount, 13);
VELLOR_CHECK_FIELD(VellorOutputDesc, type, 20);

typedef struct VellorInputDesc
{
    uint32_t uid;  /* stable identifier of the input */
    uint32_t type; /* VellorType */
    /*
     * As many 32-bit floats or integers as the type has; for a string the zero-terminated UCS-4 text; null
     * for an image. Owned by the engine, valid until the handle is released.
     */
    const void* defaultValue;
} VellorInputDesc;
VELLOR_CHECK_SIZE(VellorInputDesc, 16);
VELLOR_CHECK_FIELD(VellorInputDesc, uid, 0);
VELLOR_CHECK_FIELD(VellorInputDesc, type, 4);
VELLOR_CHECK_FIELD(VellorInputDesc, defaultValue, 8);

/*
 * A picture: a fetched image output, or the value of an image input.
 *
 * Of a fetched output the receiver owns `buffer` and frees it with free(), so an engine takes it from malloc,
 * posix_memalign or the host's allocation callback. Of an image input the host keeps `buffer`.
 * The buffer holds level 0; the levels below it may follow, from large to small.
 */
typedef struct VellorTexture
{
    void* buffer;
    uint16_t width;       /* of level 0 */
    uint16_t height;      /* of level 0 */
    uint8_t pixelFormat;  /* VellorFormat */
    uint8_t channelOrder; /* VellorChannelOrder */
    uint8_t reserved[2];
} VellorTexture;
VELLOR_CHECK_SIZE(VellorTexture, 16);
VELLOR_CHECK_FIELD(VellorTexture, buffer, 0);
VELLOR_CHECK_FIELD(VellorTexture, width, 8);
VELLOR_CHECK_FIELD(VellorTexture, height, 10);
VELLOR_CHECK_FIELD(VellorTexture, pixelFormat, 12);
VELLOR_CHECK_FIELD(VellorTexture, channelOrder, 13);

/* The form in which an engine would like an image input. */
typedef struct VellorImageRequest
{
    uint32_t width;  /* of level 0 */
    uint32_t height; /* of level 0 */
    uint8_t pixelFormat;
    uint8_t mipmapsCount;
    uint8_t reserved[6];
} VellorImageRequest;
VELLOR_CHECK_SIZE(VellorImageRequest, 16);
VELLOR_CHECK_FIELD(VellorImageRequest, width, 0);
VELLOR_CHECK_FIELD(VellorImageRequest, height, 4);

/* ---- Callbacks -------------------------------------------------------------------------------------- */

enum VellorCallbackId
{
    VELLOR_CALLBACK_PROGRESS = 0,
    VELLOR_CALLBACK_OUTPUT_COMPLETE = 2,
    VELLOR_CALLBACK_ALLOCATION = 5,
    VELLOR_CALLBACK_RELEASE = 6,
    VELLOR_CALLBACK_IMAGE_INPUT = 9,
    VELLOR_CALLBACK_CACHE_STORE = 11
};

/* 0: `current` of `total` steps are done. `total` is above 0. The host looks at every fourth step. */
typedef void (*VellorProgressCallback)(VellorHandle* handle, uint32_t current, uint32_t total);

/*
 * 2: output `outputIndex` has its result. `user` is what was given to vellorHandlePushOutputs. The host
 * fetches the result inside the callback, with vellorHandleGetOutputDesc and vellorHandleGetOutputs, or
 * never.
 */
typedef void (*VellorOutputCompleteCallback)(VellorHandle* handle, uint32_t outputIndex, void* user);

/* 5: a block of `size` bytes at a multiple of `alignment` (a power of two), or null. free() releases it too.
 */
typedef void* (*VellorAllocationCallback)(uint64_t size, uint64_t alignment);

/* 6: releases a block of callback 5. Null is allowed. */
typedef void (*VellorReleaseCallback)(void* block);

/*
 * 9: the engine is about to read image input `inputIndex`, whose uid is `inputUid`, and would like it as
 * `request` says. `*image` holds the `user` pointer that was pushed with the value, or null. The host leaves
 * it, or puts a VellorTexture* of its own there, which stays valid until the next callback for this input.
 */
typedef void (*VellorImageInputCallback)(VellorHandle* handle, uint32_t inputIndex, uint32_t inputUid,
                                         void** image, const VellorImageRequest* request);

/*
 * 11: parks blocks that do not fit the memory budget with the host. With VELLOR_CACHE_WRITE `size` bytes of
 * `buffer` become the content of entry `entry`; otherwise, with VELLOR_CACHE_READ, the first `size` bytes of
 * the entry are put into `buffer`. Then, with VELLOR_CACHE_REMOVE, the entry is dropped. An entry is made by
 * its first use, so reading one that was never written leaves `buffer` as it is; there is no result, so an
 * engine that cares checks what it reads. All entries of a handle go with it.
 */
enum VellorCacheFlags
{
    VELLOR_CACHE_WRITE = 0x1,
    VELLOR_CACHE_READ = 0x2,
    VELLOR_CACHE_REMOVE = 0x4
};
typedef void (*VellorCacheStoreCallback)(VellorHandle* handle, uint32_t flags, uint32_t entry, char* buffer,
                                         uint64_t size);

/* ---- Entry points: the library and its contexts ------------------------------------------------------- */

/*
 * Fills `version`. Needs no context. `apiVersion` is VELLOR_API_VERSION. An engine that does not serve that
 * version sets VellorVersion::status to something else than 0.
 */
VELLOR_EXPORT void vellorGetCurrentVersionImpl(VellorVersion* version, uint32_t apiVersion);

/* Makes a context. `device` may be dropped after the call; `reserved` is 0. A refused context leaves
 * *context. */
VELLOR_EXPORT uint32_t vellorContextInitImpl(VellorContext** context, VellorDevice* device,
                                             uint32_t apiVersion, uint32_t reserved);

/* Ends a context, whose handles are released already. */
VELLOR_EXPORT void vellorContextRelease(VellorContext* context);

/* Registers a callback (VellorCallbackId); one that the engine does not know is ignored; null takes it away.
 */
VELLOR_EXPORT void vellorContextSetCallback(VellorContext* context, uint32_t callbackId,
                                            VellorFunction callback);

/* Releases a block that the engine allocated and gave away. Null is allowed. */
VELLOR_EXPORT void vellorContextMemoryFree(VellorContext* context, void* block);

/*
 * Makes the engine set its device's states again, which the host may have changed: called ahead of each
 * vellorHandleStart, after the host's work in a callback, and ahead of vellorHandleRelease.
 */
VELLOR_EXPORT void vellorContextRestoreStates(VellorContext* context);

/* ---- Entry points: the handle on one binary image ------------------------------------------------------ */

/*
 * Makes a handle on the `size` bytes at `data`, which is aligned to 16 bytes and stays readable and unchanged
 * until the handle is released. Anything may be in there. `resources` may be dropped after the call.
 */
VELLOR_EXPORT uint32_t vellorHandleInit(VellorHandle** handle, VellorContext* context, const void* data,
                                        uint64_t size, const VellorHardResources* resources);

/* Ends a handle. Not called while vellorHandleStart runs. */
VELLOR_EXPORT void vellorHandleRelease(VellorHandle* handle);

/*
 * Queues `count` outputs, given by uid (VELLOR_PUSH_UIDS), to be computed by the next vellorHandleStart with
 * the inputs pushed until now. With VELLOR_PUSH_HINT nothing is computed: it tells which outputs the hinted
 * inputs will be changed for. The array may be dropped after the call. `user` goes to the output-complete
 * callback.
 */
VELLOR_EXPORT uint32_t vellorHandlePushOutputs(VellorHandle* handle, uint32_t flags, const uint32_t* outputs,
                                               uint32_t count, void* user);

/* Drops every output and hint that is queued. Values of inputs stay. */
VELLOR_EXPORT uint32_t vellorHandleFlush(VellorHandle* handle);

/* Computes what is queued and returns when all of it is done or stopped; a stop is no error. `flags` is 0. */
VELLOR_EXPORT uint32_t vellorHandleStart(VellorHandle* handle, uint32_t flags);

/* Sets *state (VellorState). `user` is 0. Any thread. */
VELLOR_EXPORT void vellorHandleGetState(VellorHandle* handle, const void* user, uint32_t* state);

/* Not called by the host. Changes the resources of a handle. */
VELLOR_EXPORT uint32_t vellorHandleSwitchHard(VellorHandle* handle, uint32_t flags,
                                              const VellorHardResources* resources, void* user);

/* Asks a running vellorHandleStart to return soon, and returns at once. `mode` is VELLOR_STOP_DEFAULT. Any
 * thread. */
VELLOR_EXPORT void vellorHandleStop(VellorHandle* handle, uint32_t mode);

/*
 * Fetches the results of `count` outputs (always 1) from `outputIndex` on. With VELLOR_FETCH_NUMERIC `out`
 * takes the 32-bit components of a numeric output, 16 bytes at most; with 0 it is a VellorTexture, whose
 * buffer then belongs to the caller. A result can be fetched once, inside its output-complete callback.
 */
VELLOR_EXPORT uint32_t vellorHandleGetOutputs(VellorHandle* handle, uint32_t flags, uint32_t outputIndex,
                                              uint32_t count, void* out);

/*
 * Sets input `inputIndex` to `value`, which is read during the call and then belongs to the caller again:
 *   numeric types  as many 32-bit components as the type has (16 bytes are readable)
 *   image          a VellorTexture, raw or block compressed; null takes the image away
 *   string         zero-terminated UCS-4 text, 32 bits a character; null is the empty text
 * With VELLOR_PUSH_HINT the input is only named, as one that the user is going to change: type 0, value null.
 * `user` is 0, or for an image what the image-input callback is given.
 */
VELLOR_EXPORT uint32_t vellorHandlePushSetInput(VellorHandle* handle, uint32_t flags, uint32_t inputIndex,
                                                uint32_t inputType, const void* value, void* user);

/* Fills *desc, which the caller has zeroed. */
VELLOR_EXPORT uint32_t vellorHandleGetDesc(VellorHandle* handle, VellorDataDesc* desc);

/* Fills *desc. Works at any time, also inside the output-complete callback. */
VELLOR_EXPORT uint32_t vellorHandleGetOutputDesc(VellorHandle* handle, uint32_t outputIndex,
                                                 VellorOutputDesc* desc);

/* Fills *desc. */
VELLOR_EXPORT uint32_t vellorHandleGetInputDesc(VellorHandle* handle, uint32_t inputIndex,
                                                VellorInputDesc* desc);

/* Not called by the host. The form in which the engine would like an image input. */
VELLOR_EXPORT uint32_t vellorHandleGetInputImageDesc(VellorHandle* handle, uint32_t inputIndex,
                                                     VellorImageRequest* request);

/* Not called by the host. Queues a mark behind what is queued; `label` reads back once all before it is done.
 */
VELLOR_EXPORT uint32_t vellorHandleSyncSetLabel(VellorHandle* handle, uint32_t label, void* user);

/* Not called by the host. The last mark that was reached; 0 at first. */
VELLOR_EXPORT uint32_t vellorHandleSyncGetLabel(VellorHandle* handle, uint32_t* label);

/* Not called by the host. The context that the handle was made in. */
VELLOR_EXPORT uint32_t vellorHandleGetParentContext(VellorHandle* handle, VellorContext** context);

/* Not called by the host. Moves the results kept in `from` to `to`, a handle of the same context and image.
 */
VELLOR_EXPORT uint32_t vellorHandleTransferCache(VellorHandle* to, VellorHandle* from, uint32_t flags);

/* ---- Types of the entry points, for hosts that resolve them at run time ---------------------------------
 */

typedef void (*VellorGetCurrentVersionImplFn)(VellorVersion*, uint32_t);
typedef uint32_t (*VellorContextInitImplFn)(VellorContext**, VellorDevice*, uint32_t, uint32_t);
typedef void (*VellorContextReleaseFn)(VellorContext*);
typedef void (*VellorContextSetCallbackFn)(VellorContext*, uint32_t, VellorFunction);
typedef void (*VellorContextMemoryFreeFn)(VellorContext*, void*);
typedef void (*VellorContextRestoreStatesFn)(VellorContext*);
typedef uint32_t (*VellorHandleInitFn)(VellorHandle**, VellorContext*, const void*, uint64_t,
                                       const VellorHardResources*);
typedef void (*VellorHandleReleaseFn)(VellorHandle*);
typedef uint32_t (*VellorHandlePushOutputsFn)(VellorHandle*, uint32_t, const uint32_t*, uint32_t, void*);
typedef uint32_t (*VellorHandleFlushFn)(VellorHandle*);
typedef uint32_t (*VellorHandleStartFn)(VellorHandle*, uint32_t);
typedef void (*VellorHandleGetStateFn)(VellorHandle*, const void*, uint32_t*);
typedef uint32_t (*VellorHandleSwitchHardFn)(VellorHandle*, uint32_t, const VellorHardResources*, void*);
typedef void (*VellorHandleStopFn)(VellorHandle*, uint32_t);
typedef uint32_t (*VellorHandleGetOutputsFn)(VellorHandle*, uint32_t, uint32_t, uint32_t, void*);
typedef uint32_t (*VellorHandlePushSetInputFn)(VellorHandle*, uint32_t, uint32_t, uint32_t, const void*,
                                               void*);
typedef uint32_t (*VellorHandleGetDescFn)(VellorHandle*, VellorDataDesc*);
typedef uint32_t (*VellorHandleGetOutputDescFn)(VellorHandle*, uint32_t, VellorOutputDesc*);
typedef uint32_t (*VellorHandleGetInputDescFn)(VellorHandle*, uint32_t, VellorInputDesc*);
typedef uint32_t (*VellorHandleGetInputImageDescFn)(VellorHandle*, uint32_t, VellorImageRequest*);
typedef uint32_t (*VellorHandleSyncSetLabelFn)(VellorHandle*, uint32_t, void*);
typedef uint32_t (*VellorHandleSyncGetLabelFn)(VellorHandle*, uint32_t*);
typedef uint32_t (*VellorHandleGetParentContextFn)(VellorHandle*, VellorContext**);
typedef uint32_t (*VellorHandleTransferCacheFn)(VellorHandle*, VellorHandle*, uint32_t);

#ifdef __cplusplus
}
#endif

#endif
