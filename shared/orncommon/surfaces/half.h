#pragma once

#include <cstdint>
#include <cstring>

namespace Orn::Surfaces {

/// The bits of an IEEE binary16 number: 1 sign, 5 exponent (bias 15), 10 fraction. 1.0 is 0x3C00.
using ORNHalf16 = std::uint16_t;

/// Exact for every pattern, subnormals, infinities and NaN included.
inline float halfToFloat(ORNHalf16 half)
{
    // The fraction and exponent, moved to their place in a float, are a float too small by 2^112; one
    // multiplication mends that for subnormals too. Infinity and NaN then get the float's top exponent.
    std::uint32_t const magnitude = std::uint32_t(half & 0x7FFFu) << 13;
    float value;
    std::memcpy(&value, &magnitude, sizeof value);
    value *= 0x1p112f;
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    bits |= magnitude >= 0x0F800000u ? 0x7F800000u : 0u;
    bits |= std::uint32_t(half & 0x8000u) << 16;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// Rounds to nearest, ties to even; beyond 65519.99 gives infinity, NaN stays NaN. Without branches, so that
/// a compiler makes vectors of it.
inline ORNHalf16 floatToHalf(float value)
{
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    std::uint32_t const sign = (bits >> 16) & 0x8000u;
    bits &= 0x7FFFFFFFu;
    // Below 2^-14, adding 0.5 lets the float unit round at the half's last bit.
    float magnitude;
    std::memcpy(&magnitude, &bits, sizeof magnitude);
    magnitude += 0.5f;
    std::uint32_t small;
    std::memcpy(&small, &magnitude, sizeof small);
    small -= 0x3F000000u;
    std::uint32_t const normal = (bits + 0x0FFFu + ((bits >> 13) & 1u) - 0x38000000u) >> 13;
    // A choice by masks, which no compiler turns back into jumps.
    auto const ordered = std::int32_t(bits);
    auto const choose = [](bool condition, std::uint32_t a, std::uint32_t b) {
        std::uint32_t const mask = 0u - std::uint32_t(condition);
        return (a & mask) | (b & ~mask);
    };
    std::uint32_t const finite = choose(ordered < 0x38800000, small, normal);
    std::uint32_t const bounded = choose(ordered < 0x47800000, finite, 0x7C00u); // 65536 and beyond: infinity
    return ORNHalf16(sign | choose(ordered <= 0x7F800000, bounded, 0x7E00u));
}

} // namespace Orn::Surfaces
