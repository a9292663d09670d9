#pragma once

#include <cstdint>

#if defined(__x86_64__)
#include <x86intrin.h>
#else
#include <chrono>
#endif

namespace vellor::cpu {

/// A clock that costs next to nothing to read; its unit is anybody's guess.
inline std::uint64_t ticksNow()
{
#if defined(__x86_64__)
    return __rdtsc();
#else
    return static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
#endif
}

} // namespace vellor::cpu
