#pragma once

#include <vellor/engine.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace vellor::cpu {

/// The host's functions, each null until it is registered. Called on the thread that called into the engine,
/// never on a thread of the pool.
struct Callbacks
{
    VellorProgressCallback progress = nullptr;
    VellorOutputCompleteCallback outputComplete = nullptr;
    VellorAllocationCallback allocation = nullptr;
    VellorReleaseCallback release = nullptr;
    VellorImageInputCallback imageInput = nullptr;
    VellorCacheStoreCallback cacheStore = nullptr;

    /// Registers; an id that isn't known is ignored.
    void set(std::uint32_t id, VellorFunction function)
    {
        switch (id) {
        case VELLOR_CALLBACK_PROGRESS:
            progress = reinterpret_cast<VellorProgressCallback>(function);
            break;
        case VELLOR_CALLBACK_OUTPUT_COMPLETE:
            outputComplete = reinterpret_cast<VellorOutputCompleteCallback>(function);
            break;
        case VELLOR_CALLBACK_ALLOCATION:
            allocation = reinterpret_cast<VellorAllocationCallback>(function);
            break;
        case VELLOR_CALLBACK_RELEASE:
            release = reinterpret_cast<VellorReleaseCallback>(function);
            break;
        case VELLOR_CALLBACK_IMAGE_INPUT:
            imageInput = reinterpret_cast<VellorImageInputCallback>(function);
            break;
        case VELLOR_CALLBACK_CACHE_STORE:
            cacheStore = reinterpret_cast<VellorCacheStoreCallback>(function);
            break;
        default:
            break;
        }
    }

    /// A block that the host will own and give back with free(). Null when there is no memory.
    void* allocate(std::size_t size) const
    {
        constexpr std::size_t kAlignment = 64;
        if (allocation)
            return allocation(size, kAlignment);
        void* block = nullptr;
        return posix_memalign(&block, kAlignment, size) == 0 ? block : nullptr;
    }

    void free(void* block) const
    {
        if (block && release)
            release(block);
        else
            std::free(block);
    }
};

} // namespace vellor::cpu
