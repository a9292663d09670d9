/*
 * What the nodes of a package cost: an addition to the interface of a rendering engine that a host may look
 * up and do without. An engine that can tell exports vellorHandleSetProfile beside the entry points of
 * engine.h.
 */
#ifndef VELLOR_PROFILE_H
#define VELLOR_PROFILE_H

#include "engine.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The number of no node of the package: a step of the engine's own. */
#define VELLOR_PROFILE_NO_NODE 0xFFFFFFFFu

/* One step of a generation. Strings live until the callback returns. */
typedef struct VellorProfileStep
{
    uint32_t node;      /* of the binary image, or VELLOR_PROFILE_NO_NODE */
    uint32_t outputUid; /* the output that this was done for first */
    const char* name;   /* "graph/node" as the author called it, or empty */
    const char* kind;   /* name of the node's kind; of own steps "image", "resample", "pack" or "output" */
    uint32_t stage;     /* counts from 0; nodes that ran together strip by strip share one */
    uint32_t width, height, channels; /* of the result, in pixels */
    uint32_t cached;                  /* 1: the result was there from before, and nothing was done */
    double seconds;                   /* on the clock; of nodes that share a stage, the share that each had */
    double processorSeconds;          /* of all threads together */
    uint64_t resultBytes;  /* memory of the result; 0 for one that never left the processor's cache */
    uint64_t scratchBytes; /* memory that was needed besides while it ran */
    uint64_t liveBytes;    /* memory of all pictures of the context when it was done */
} VellorProfileStep;

/* Called on the thread that called vellorHandleStart, after each stage, once for each of its nodes. */
typedef void (*VellorProfileCallback)(VellorHandle* handle, const VellorProfileStep* step, void* user);

/* From the next vellorHandleStart on; a null callback ends it. Measuring costs a little time and changes no
   pixel. Not during vellorHandleStart. Returns VELLOR_OK, or VELLOR_ERROR_INVALID_ARGUMENT for a null handle.
 */
VELLOR_EXPORT uint32_t vellorHandleSetProfile(VellorHandle* handle, VellorProfileCallback callback,
                                              void* user);
typedef uint32_t (*VellorHandleSetProfileFn)(VellorHandle* handle, VellorProfileCallback callback,
                                             void* user);

#ifdef __cplusplus
}
#endif

#endif
