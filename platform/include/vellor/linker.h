/*
 * The interface of the linker: from an assembly or a whole archive to the binary image that an engine takes,
 * and to the XML descriptions that lie in an archive.
 *
 *   vellorLinkerContextInit, SetCallback, SetOption
 *   vellorLinkerHandleInit, PushAssemblyMemory, Link      the image is the handle's until its release
 *   vellorLinkerHandleRelease, vellorLinkerContextRelease
 *
 * Threads: a context and its handle are used by one thread at a time; callbacks come on the calling thread,
 * during the call. Every function but the version returns VELLOR_LINKER_OK or another VellorLinkerResult.
 */
#ifndef VELLOR_LINKER_H
#define VELLOR_LINKER_H

#include "base.h"

#ifdef __cplusplus
extern "C" {
#endif

#define VELLOR_LINKER_API_VERSION 0x10002u

typedef struct VellorLinkerContext VellorLinkerContext; /* opaque, the linker's */
typedef struct VellorLinkerHandle VellorLinkerHandle;   /* opaque, the linker's */

enum VellorLinkerResult
{
    VELLOR_LINKER_OK = 0,
    VELLOR_LINKER_ERROR_INVALID_ARGUMENT = 1,
    VELLOR_LINKER_ERROR_OUT_OF_MEMORY = 2,
    VELLOR_LINKER_ERROR_API_VERSION = 6,    /* the linker does not serve the API version asked for */
    VELLOR_LINKER_ERROR_ENGINE_VERSION = 7, /* the linker does not serve this engine */
    VELLOR_LINKER_ERROR_IO = 8,
    VELLOR_LINKER_ERROR_INVALID_ASSEMBLY = 9, /* damaged, or of another version */
    VELLOR_LINKER_ERROR_NO_ASSEMBLY = 10,     /* nothing was pushed */
    VELLOR_LINKER_ERROR_LINK = 11,
    VELLOR_LINKER_ERROR_INVALID_ARCHIVE = 15,
    VELLOR_LINKER_ERROR_EMPTY_ARCHIVE = 16 /* an archive without an assembly */
};

enum VellorLinkerOption
{
    VELLOR_LINKER_OPTION_SIZE_LIMIT = 2 /* largest width and height of a picture, in pixels, a power of two */
};

enum VellorLinkerCallbackId
{
    VELLOR_LINKER_CALLBACK_MESSAGE = 1,
    VELLOR_LINKER_CALLBACK_XML = 2
};

/* 1: a message for the user. `level`: 0 note or warning, 1 error, 2 failure of the whole. `text` is UTF-8,
 * for the call. */
typedef void (*VellorLinkerMessageCallback)(VellorLinkerContext* context, int32_t level, const char* text);

/* 2: an XML description, the `index`th that was found while linking. `xml` is UTF-8, zero-terminated, for the
 * call. */
typedef void (*VellorLinkerXmlCallback)(VellorLinkerContext* context, int32_t index, const char* xml);

/* The texts are UTF-8, never null, and live as long as the library. */
typedef struct VellorLinkerVersion
{
    uint32_t versionMajor;
    uint32_t versionMinor;
    uint32_t versionPatch;
    uint32_t reserved0;
    const char* label;
    const char* date;
    uint32_t buildHash;
    uint32_t reserved1;
} VellorLinkerVersion;
VELLOR_CHECK_SIZE(VellorLinkerVersion, 40);
VELLOR_CHECK_FIELD(VellorLinkerVersion, versionMajor, 0);
VELLOR_CHECK_FIELD(VellorLinkerVersion, versionMinor, 4);
VELLOR_CHECK_FIELD(VellorLinkerVersion, versionPatch, 8);
VELLOR_CHECK_FIELD(VellorLinkerVersion, label, 16);
VELLOR_CHECK_FIELD(VellorLinkerVersion, date, 24);
VELLOR_CHECK_FIELD(VellorLinkerVersion, buildHash, 32);

/* An engine that the linker makes binary images for. */
typedef struct VellorLinkerEngineDesc
{
    uint32_t engineId; /* VellorVersion::engineId; 0 ends the list */
    uint32_t reserved0;
    const char* name;
    const char* reserved1;
    uint32_t linkerCompatibility; /* equals VellorVersion::linkerCompatibility of the engines served */
    uint32_t reserved2;
} VellorLinkerEngineDesc;
VELLOR_CHECK_SIZE(VellorLinkerEngineDesc, 32);
VELLOR_CHECK_FIELD(VellorLinkerEngineDesc, engineId, 0);
VELLOR_CHECK_FIELD(VellorLinkerEngineDesc, linkerCompatibility, 24);

/* Fills `version`. Any thread. */
VELLOR_EXPORT void vellorLinkerGetCurrentVersion(VellorLinkerVersion* version);

/* The engines served, ended by an entry whose id is 0. Owned by the library. Any thread. */
VELLOR_EXPORT const VellorLinkerEngineDesc* vellorLinkerGetEnginesList(void);

/* Makes a context that links for the engine `engineId`. A failure leaves *context null. */
VELLOR_EXPORT uint32_t vellorLinkerContextInit(VellorLinkerContext** context, uint32_t apiVersion,
                                               uint32_t engineId);

/* Ends a context, whose handles are released already. Null is allowed. */
VELLOR_EXPORT uint32_t vellorLinkerContextRelease(VellorLinkerContext* context);

/* Registers a callback (VellorLinkerCallbackId); null takes it away. */
VELLOR_EXPORT uint32_t vellorLinkerContextSetCallback(VellorLinkerContext* context, uint32_t callbackId,
                                                      VellorFunction callback);

/* Sets an option (VellorLinkerOption) for the links to come. */
VELLOR_EXPORT uint32_t vellorLinkerContextSetOption(VellorLinkerContext* context, uint32_t option,
                                                    uint32_t value);

/* Makes a handle: one link. A failure leaves *handle null. */
VELLOR_EXPORT uint32_t vellorLinkerHandleInit(VellorLinkerHandle** handle, VellorLinkerContext* context);

/* Ends a handle, and the image that it gave. Null is allowed. */
VELLOR_EXPORT uint32_t vellorLinkerHandleRelease(VellorLinkerHandle* handle);

/* Adds an assembly or an archive, told apart by their first bytes. `data` is copied. Anything may be in
 * there. */
VELLOR_EXPORT uint32_t vellorLinkerHandlePushAssemblyMemory(VellorLinkerHandle* handle, const void* data,
                                                            uint64_t size);

/* Links what was pushed. *data and *size are the binary image, owned by the handle and valid until its
 * release. */
VELLOR_EXPORT uint32_t vellorLinkerHandleLink(VellorLinkerHandle* handle, const void** data, uint64_t* size);

typedef void (*VellorLinkerGetCurrentVersionFn)(VellorLinkerVersion*);
typedef const VellorLinkerEngineDesc* (*VellorLinkerGetEnginesListFn)(void);
typedef uint32_t (*VellorLinkerContextInitFn)(VellorLinkerContext**, uint32_t, uint32_t);
typedef uint32_t (*VellorLinkerContextReleaseFn)(VellorLinkerContext*);
typedef uint32_t (*VellorLinkerContextSetCallbackFn)(VellorLinkerContext*, uint32_t, VellorFunction);
typedef uint32_t (*VellorLinkerContextSetOptionFn)(VellorLinkerContext*, uint32_t, uint32_t);
typedef uint32_t (*VellorLinkerHandleInitFn)(VellorLinkerHandle**, VellorLinkerContext*);
typedef uint32_t (*VellorLinkerHandleReleaseFn)(VellorLinkerHandle*);
typedef uint32_t (*VellorLinkerHandlePushAssemblyMemoryFn)(VellorLinkerHandle*, const void*, uint64_t);
typedef uint32_t (*VellorLinkerHandleLinkFn)(VellorLinkerHandle*, const void**, uint64_t*);

#ifdef __cplusplus
}
#endif

#endif
