#pragma once

#include "platform/engines/cpu/bufferpool.h"
#include "platform/engines/cpu/callbacks.h"
#include "platform/engines/cpu/package.h"
#include "platform/engines/cpu/threadpool.h"

#include <vellor/engine.h>

#include <memory>

namespace vellor::cpu {

/// What the handles of a context share. Everything that the engine holds hangs on a context: with the last of
/// them threads and memory are gone, and the library can be unloaded.
struct Context
{
    Callbacks callbacks;
    ThreadPool threads;
    std::shared_ptr<BufferPool> pool = BufferPool::make();
    KindLookup kinds; // the node kinds that packages may use
};

} // namespace vellor::cpu

/// The interface's opaque type. Lives until the host has released it and the last of its handles is gone.
struct VellorContext : vellor::cpu::Context
{
    std::shared_ptr<VellorContext> self; // the host's hold on it
};
