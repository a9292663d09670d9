#pragma once

// The operations that math-inl.h and hash-inl.h are written in, for one number at a time.
//
// simd.h gives the same operations, by the same names and with the same results bit for bit, for whole
// vectors. Code written in these names is compiled once for each: a number worked out ahead of the pixels
// agrees with the pixels.

#include <cmath>
#include <cstdint>
#include <cstring>

namespace vellor::nodes::scalar {

using F = float;
using U = std::uint32_t; // an unsigned number, or a two's complement one
using M = bool;

inline F floorOf(F a)
{
    return std::floor(a);
}
inline F roundOf(F a)
{
    return std::nearbyint(a);
} // halves to even
inline F sqrtOf(F a)
{
    return std::sqrt(a);
}
inline F absOf(F a)
{
    return std::fabs(a);
}
inline F minOf(F a, F b)
{
    return a < b ? a : b;
} // the second where either is no number
inline F maxOf(F a, F b)
{
    return a > b ? a : b;
}
inline F choose(M m, F yes, F no)
{
    return m ? yes : no;
}
inline U choose(M m, U yes, U no)
{
    return m ? yes : no;
}

inline U bitsOf(F a)
{
    U bits;
    std::memcpy(&bits, &a, sizeof bits);
    return bits;
}

inline F floatOfBits(U bits)
{
    F a;
    std::memcpy(&a, &bits, sizeof a);
    return a;
}

/// Truncated towards zero. What is no number or does not fit becomes -2^31.
inline U toInteger(F a)
{
    const bool fits = a >= -2147483648.0f && a < 2147483648.0f;
    return fits ? static_cast<U>(static_cast<std::int32_t>(a)) : 0x80000000u;
}

/// The two's complement number a.
inline F toFloat(U a)
{
    return static_cast<F>(static_cast<std::int32_t>(a));
}

#include "platform/nodes/hash-inl.h"
#include "platform/nodes/math-inl.h"

} // namespace vellor::nodes::scalar
