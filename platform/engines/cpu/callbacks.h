#pragma once

#include <vellor/engine.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include <sys/mman.h>

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

    /// A block that the host will own and give back with free(). Null when there is no memory. Large blocks
    /// ask for huge pages: filling a fresh picture costs more in page faults than in arithmetic.
    void* allocate(std::size_t size) const
    {
        constexpr std::size_t kHugePage = std::size_t(2) << 20;
        const bool large = size >= 2 * kHugePage;
        const std::size_t alignment = large ? kHugePage : 64;
        void* block = nullptr;
        if (allocation)
            block = allocation(size, alignment);
        else if (posix_memalign(&block, alignment, size) != 0)
            return nullptr;
        if (large && block && reinterpret_cast<std::uintptr_t>(block) % kHugePage == 0)
            madvise(block, size / kHugePage * kHugePage, MADV_HUGEPAGE); // a wish: it may fail
        return block;
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
