// Values between pixels, for the instruction set that is being compiled. Pixels is one of pixels-inl.h.

#if defined(VELLOR_NODES_INTERPOLATION_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLOR_NODES_INTERPOLATION_INL_H
#undef VELLOR_NODES_INTERPOLATION_INL_H
#else
#define VELLOR_NODES_INTERPOLATION_INL_H
#endif

#include "platform/nodes/pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {

template<class Pixels> HWY_INLINE F bilinearOf(const Pixels& pixels, F x, F y)
{
    const Pair between = pairBetweenRows(pixels, y);
    return lerpOf(between.first, between.second, x);
}

/// Weights of four neighbours, the place lying at t between the second and the third (E. Catmull, R. Rom).
struct CubicWeights
{
    F w[4];
    HWY_INLINE explicit CubicWeights(F t)
    {
        const F half(0.5f), t2 = t * t, t3 = t2 * t;
        w[0] = (t2 + t2 - t3 - t) * half;
        w[1] = (F(3.0f) * t3 - F(5.0f) * t2 + F(2.0f)) * half;
        w[2] = (F(4.0f) * t2 - F(3.0f) * t3 + t) * half;
        w[3] = (t3 - t2) * half;
    }
};

template<class Pixels> HWY_INLINE F bicubicOf(const Pixels& pixels, F x, F y)
{
    const CubicWeights across(x), down(y);
    F sum(0.0f);
    for (int row = 0; row < 4; ++row) {
        const Pair left = pixels.pair(-1, row - 1), right = pixels.pair(1, row - 1);
        const F value = (left.first * across.w[0] + left.second * across.w[1]) +
                        (right.first * across.w[2] + right.second * across.w[3]);
        sum += value * down.w[row];
    }
    return sum;
}

template<class Pixels> HWY_INLINE F nearestOf(const Pixels& pixels, F x, F y)
{
    const Pair upper = pixels.pair(0, 0), lower = pixels.pair(0, 1);
    const M right = x >= F(0.5f), below = y >= F(0.5f);
    return choose(below, choose(right, lower.second, lower.first), choose(right, upper.second, upper.first));
}

template<PixelFilter filter, class Pixels> HWY_INLINE F filteredOf(const Pixels& pixels, F x, F y)
{
    if constexpr (filter == PixelFilter::Bicubic)
        return bicubicOf(pixels, x, y);
    else if constexpr (filter == PixelFilter::Nearest)
        return nearestOf(pixels, x, y);
    else
        return bilinearOf(pixels, x, y);
}

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
