#pragma once

#include "platform/engines/cpu/callbacks.h"

#include <cstdint>

namespace vellor::cpu {

/// The host's place for blocks that don't fit the memory budget, by way of its callback. The thread that
/// called into the engine only.
class CacheStore
{
public:
    CacheStore(const Callbacks& callbacks, VellorHandle* handle) : callbacks_(callbacks), handle_(handle) {}

    bool available() const { return callbacks_.cacheStore && !refused_; }
    /// Parks a block under a new number, above 0.
    std::uint32_t write(std::byte* block, std::uint64_t size)
    {
        const std::uint32_t entry = ++lastEntry_;
        callbacks_.cacheStore(handle_, VELLOR_CACHE_WRITE, entry, reinterpret_cast<char*>(block), size);
        return entry;
    }
    /// The callback has no result: the caller compares what came back with what was parked.
    void read(std::uint32_t entry, std::byte* block, std::uint64_t size)
    {
        if (callbacks_.cacheStore)
            callbacks_.cacheStore(handle_, VELLOR_CACHE_READ, entry, reinterpret_cast<char*>(block), size);
    }
    void remove(std::uint32_t entry)
    {
        if (callbacks_.cacheStore)
            callbacks_.cacheStore(handle_, VELLOR_CACHE_REMOVE, entry, nullptr, 0);
    }
    /// No more writes: a block was lost.
    void refuse() { refused_ = true; }

private:
    const Callbacks& callbacks_;
    VellorHandle* handle_;
    std::uint32_t lastEntry_ = 0;
    bool refused_ = false;
};

} // namespace vellor::cpu
