#pragma once

#include <cstdint>
#include <cstring>

namespace vellor::cpu {

/// The nearest half, ties to even; beyond the range infinity; NaN stays NaN. Branch-free, so that loops
/// vectorise.
inline std::uint16_t halfFromFloat(float value)
{
    std::uint32_t bits;
    std::memcpy(&bits, &value, 4);
    const std::uint32_t sign = (bits >> 16) & 0x8000u, magnitude = bits & 0x7fffffffu;
    // Below 2^-14 the result is denormal: adding 0.5 lets the float unit shift and round the mantissa.
    float absolute;
    std::memcpy(&absolute, &magnitude, 4);
    const float shifted = absolute + 0.5f;
    std::uint32_t shiftedBits;
    std::memcpy(&shiftedBits, &shifted, 4);
    const std::uint32_t denormal = shiftedBits - 0x3f000000u;
    const std::uint32_t normal = (magnitude + 0xc8000fffu + ((magnitude >> 13) & 1u)) >> 13;
    const std::uint32_t special = magnitude > 0x7f800000u ? 0x7e00u : 0x7c00u;
    std::uint32_t half = magnitude < 0x38800000u ? denormal : normal;
    half = magnitude >= 0x47800000u ? special : half;
    return static_cast<std::uint16_t>(half | sign);
}

inline float floatFromHalf(std::uint16_t half)
{
    const std::uint32_t sign = (half & 0x8000u) << 16, magnitude = half & 0x7fffu;
    // Denormals: the mantissa as an integer times 2^-24.
    const float small = static_cast<float>(static_cast<std::int32_t>(magnitude)) * 5.9604644775390625e-8f;
    std::uint32_t bits;
    std::memcpy(&bits, &small, 4);
    if (magnitude >= 0x400u)
        bits = (magnitude << 13) + 0x38000000u;
    if (magnitude >= 0x7c00u)
        bits = (magnitude << 13) + 0x70000000u;
    bits |= sign;
    float value;
    std::memcpy(&value, &bits, 4);
    return value;
}

} // namespace vellor::cpu
