#pragma once

// Makes a plain function of a kernel that is compiled once for each instruction set: it calls the best one
// that the machine has. Used once per kernel, in the part of a file that HWY_ONCE keeps. Highway itself comes
// in by simd.h, after <hwy/foreach_target.h>.

#include "platform/nodes/node.h"

#define NODES_ROW_KERNEL(kernel)                                                                             \
    HWY_EXPORT(kernel);                                                                                      \
    static void run##kernel(const RowJob& job)                                                               \
    {                                                                                                        \
        HWY_DYNAMIC_DISPATCH(kernel)(job);                                                                   \
    }

/// The same for kernels that put their results.
#define NODES_PUTTING_ROW_KERNEL(kernel)                                                                     \
    HWY_EXPORT(kernel);                                                                                      \
    static void dispatch##kernel(const RowJob& job)                                                          \
    {                                                                                                        \
        HWY_DYNAMIC_DISPATCH(kernel)(job);                                                                   \
    }                                                                                                        \
    static constexpr RowKernel run##kernel{dispatch##kernel, true};

#define NODES_AREA_KERNEL(kernel)                                                                            \
    HWY_EXPORT(kernel);                                                                                      \
    static void run##kernel(const AreaJob& job)                                                              \
    {                                                                                                        \
        HWY_DYNAMIC_DISPATCH(kernel)(job);                                                                   \
    }
