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

/// Rounds to nearest, ties to even; beyond 65519.99 gives infinity, NaN stays NaN.
inline ORNHalf16 floatToHalf(float value)
{
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    std::uint32_t const sign = (bits >> 16) & 0x8000u;
    bits &= 0x7FFFFFFFu;
    if (bits > 0x7F800000u)
        return ORNHalf16(sign | 0x7E00u);
    if (bits >= 0x47800000u) // 65536 and beyond
        return ORNHalf16(sign | 0x7C00u);
    if (bits < 0x38800000u) { // below 2^-14: adding 0.5 lets the float unit round at the half's last bit
        float magnitude;
        std::memcpy(&magnitude, &bits, sizeof magnitude);
        magnitude += 0.5f;
        std::uint32_t rounded;
        std::memcpy(&rounded, &magnitude, sizeof rounded);
        return ORNHalf16(sign | (rounded - 0x3F000000u));
    }
    bits += 0x0FFFu + ((bits >> 13) & 1u);
    return ORNHalf16(sign | ((bits - 0x38000000u) >> 13));
}

} // namespace Orn::Surfaces
