// Reading pictures between their pixels, for the instruction set that is being compiled. Included by kernels'
// files after simd.h; positions are shares of the picture's width and height, and wrap around.

#if defined(VELLOR_NODES_SAMPLING_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLOR_NODES_SAMPLING_INL_H
#undef VELLOR_NODES_SAMPLING_INL_H
#else
#define VELLOR_NODES_SAMPLING_INL_H
#endif

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {

/// Where four neighbours lie in a plane, and how they are weighted: one set serves all channels of a picture.
class BilinearTaps
{
public:
    HWY_INLINE BilinearTaps(const ImageView& image, F u, F v)
    {
        const F width(static_cast<float>(image.width)), height(static_cast<float>(image.height));
        U x0, x1, y0, y1;
        place(u, width, x0, x1, m_fx);
        place(v, height, y0, y1, m_fy);
        const U stride(static_cast<std::uint32_t>(image.stride));
        y0 = y0 * stride;
        y1 = y1 * stride;
        m_00 = y0 + x0;
        m_10 = y0 + x1;
        m_01 = y1 + x0;
        m_11 = y1 + x1;
    }

    HWY_INLINE F read(const float* plane) const
    {
        const F upper = lerpOf(gather(plane, m_00), gather(plane, m_10), m_fx);
        const F lower = lerpOf(gather(plane, m_01), gather(plane, m_11), m_fx);
        return lerpOf(upper, lower, m_fy);
    }

private:
    /// The two pixels around a position along one axis, and the second one's weight.
    static HWY_INLINE void place(F position, F size, U& first, U& second, F& weight)
    {
        // Positions far outside lose precision; no number lands on pixel 0.
        const F turned = position - floorOf(position);
        const F inside = choose(turned >= F(0.0f), turned, F(0.0f));
        const F at = inside * size - F(0.5f);
        const F low = floorOf(at);
        weight = at - low;
        const F last = size - F(1.0f);
        first = toInteger(choose(low < F(0.0f), last, minOf(low, last)));
        second = toInteger(choose(low + F(1.0f) > last, F(0.0f), low + F(1.0f)));
    }

    U m_00, m_10, m_01, m_11;
    F m_fx, m_fy;
};

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
