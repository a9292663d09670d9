// Vectors of floats and integers that read like numbers, for the instruction set that is being compiled.
//
// A kernel's file includes itself once for each instruction set through <hwy/foreach_target.h>, and this
// header after it. F, U and M are a vector of floats, of 32-bit integers and of truth values; the operators
// and functions on them are the ones scalar.h has for single numbers, with the same results. Nothing here
// fuses a product with a sum.

#if defined(VELLOR_NODES_SIMD_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLOR_NODES_SIMD_H
#undef VELLOR_NODES_SIMD_H
#else
#define VELLOR_NODES_SIMD_H
#endif

#include "platform/nodes/node.h"

#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using FloatTag = hn::ScalableTag<float>;
using WordTag = hn::ScalableTag<std::uint32_t>;
using IntegerTag = hn::ScalableTag<std::int32_t>;

/// Pixels that one vector holds.
constexpr int kLanes = static_cast<int>(hn::MaxLanes(FloatTag()));

struct M
{
    hn::Mask<FloatTag> m;
};

struct F
{
    hn::Vec<FloatTag> v;
    F() = default;
    HWY_INLINE F(hn::Vec<FloatTag> vector) : v(vector) {}
    HWY_INLINE F(float number) : v(hn::Set(FloatTag(), number)) {}
};

struct U
{
    hn::Vec<WordTag> v;
    U() = default;
    HWY_INLINE U(hn::Vec<WordTag> vector) : v(vector) {}
    HWY_INLINE U(std::uint32_t number) : v(hn::Set(WordTag(), number)) {}
};

HWY_INLINE F operator+(F a, F b)
{
    return hn::Add(a.v, b.v);
}
HWY_INLINE F operator-(F a, F b)
{
    return hn::Sub(a.v, b.v);
}
HWY_INLINE F operator*(F a, F b)
{
    return hn::Mul(a.v, b.v);
}
HWY_INLINE F operator/(F a, F b)
{
    return hn::Div(a.v, b.v);
}
HWY_INLINE F operator-(F a)
{
    return hn::Neg(a.v);
}
HWY_INLINE F& operator+=(F& a, F b)
{
    return a = a + b;
}
HWY_INLINE F& operator*=(F& a, F b)
{
    return a = a * b;
}
HWY_INLINE M operator<(F a, F b)
{
    return {hn::Lt(a.v, b.v)};
}
HWY_INLINE M operator>(F a, F b)
{
    return {hn::Lt(b.v, a.v)};
}
HWY_INLINE M operator<=(F a, F b)
{
    return {hn::Le(a.v, b.v)};
}
HWY_INLINE M operator>=(F a, F b)
{
    return {hn::Le(b.v, a.v)};
}
HWY_INLINE M operator==(F a, F b)
{
    return {hn::Eq(a.v, b.v)};
}
HWY_INLINE M operator!(M a)
{
    return {hn::Not(a.m)};
}
HWY_INLINE M operator&(M a, M b)
{
    return {hn::And(a.m, b.m)};
}
HWY_INLINE M operator|(M a, M b)
{
    return {hn::Or(a.m, b.m)};
}

HWY_INLINE U operator+(U a, U b)
{
    return hn::Add(a.v, b.v);
}
HWY_INLINE U operator-(U a, U b)
{
    return hn::Sub(a.v, b.v);
}
HWY_INLINE U operator*(U a, U b)
{
    return hn::Mul(a.v, b.v);
}
HWY_INLINE U operator&(U a, U b)
{
    return hn::And(a.v, b.v);
}
HWY_INLINE U operator|(U a, U b)
{
    return hn::Or(a.v, b.v);
}
HWY_INLINE U operator^(U a, U b)
{
    return hn::Xor(a.v, b.v);
}
HWY_INLINE U operator>>(U a, int bits)
{
    return hn::ShiftRightSame(a.v, bits);
}
HWY_INLINE U operator<<(U a, int bits)
{
    return hn::ShiftLeftSame(a.v, bits);
}
HWY_INLINE M operator==(U a, U b)
{
    return {hn::RebindMask(FloatTag(), hn::Eq(a.v, b.v))};
}

/// A whole number near a, with a's sign where it is 0: instruction sets that must work roundings out lose it.
HWY_INLINE F signedLike(F whole, F a)
{
#if HWY_TARGET == HWY_SSSE3
    return hn::CopySign(whole.v, a.v);
#else
    (void)a;
    return whole;
#endif
}

HWY_INLINE F floorOf(F a)
{
    return signedLike(hn::Floor(a.v), a);
}
HWY_INLINE F roundOf(F a)
{
    return signedLike(hn::Round(a.v), a);
}
HWY_INLINE F sqrtOf(F a)
{
    return hn::Sqrt(a.v);
}
HWY_INLINE F absOf(F a)
{
    return hn::Abs(a.v);
}
HWY_INLINE F minOf(F a, F b)
{
    return hn::Min(a.v, b.v);
}
HWY_INLINE F maxOf(F a, F b)
{
    return hn::Max(a.v, b.v);
}
HWY_INLINE F choose(M m, F yes, F no)
{
    return hn::IfThenElse(m.m, yes.v, no.v);
}
HWY_INLINE U choose(M m, U yes, U no)
{
    return hn::IfThenElse(hn::RebindMask(WordTag(), m.m), yes.v, no.v);
}
HWY_INLINE U bitsOf(F a)
{
    return hn::BitCast(WordTag(), a.v);
}
HWY_INLINE F floatOfBits(U a)
{
    return hn::BitCast(FloatTag(), a.v);
}
HWY_INLINE U toInteger(F a)
{
    return hn::BitCast(WordTag(), hn::ConvertTo(IntegerTag(), a.v));
}
HWY_INLINE F toFloat(U a)
{
    return hn::ConvertTo(FloatTag(), hn::BitCast(IntegerTag(), a.v));
}

/// first, first + 1, first + 2... For pixel positions, which are exact.
HWY_INLINE F countFrom(float first)
{
    return hn::Iota(FloatTag(), first);
}
HWY_INLINE U countFrom(std::uint32_t first)
{
    return hn::Iota(WordTag(), first);
}

HWY_INLINE F load(const float* p)
{
    return hn::Load(FloatTag(), p);
} // aligned
HWY_INLINE F loadAt(const float* p)
{
    return hn::LoadU(FloatTag(), p);
} // anywhere
HWY_INLINE void store(F a, float* p)
{
    hn::Store(a.v, FloatTag(), p);
} // aligned
HWY_INLINE void storeAt(F a, float* p)
{
    hn::StoreU(a.v, FloatTag(), p);
} // anywhere
HWY_INLINE U loadAt(const std::uint32_t* p)
{
    return hn::LoadU(WordTag(), p);
}
HWY_INLINE void storeAt(U a, std::uint32_t* p)
{
    hn::StoreU(a.v, WordTag(), p);
}

/// table[index] for each lane; indices below 2^31.
HWY_INLINE F gather(const float* table, U index)
{
    return hn::GatherIndex(FloatTag(), table, hn::BitCast(IntegerTag(), index.v));
}

#include "platform/nodes/hash-inl.h"
#include "platform/nodes/math-inl.h"

/// Centres of pixels x, x + 1, ... as a share of the picture's width.
HWY_INLINE F centresFrom(int x, int width)
{
    return (countFrom(static_cast<float>(x)) + F(0.5f)) * F(1.0f / static_cast<float>(width));
}

/// Position of the centre of row y as a share of the picture's height.
HWY_INLINE float centreOf(int y, int height)
{
    return (static_cast<float>(y) + 0.5f) * (1.0f / static_cast<float>(height));
}

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
