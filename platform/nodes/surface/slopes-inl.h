// Slopes of a height map that wraps around, for the instruction set that is being compiled. Included by
// kernels' files after simd.h.

#if defined(VELLOR_SLOPES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLOR_SLOPES_INL_H
#undef VELLOR_SLOPES_INL_H
#else
#define VELLOR_SLOPES_INL_H
#endif

#include "platform/nodes/rows.h"
#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {

struct Slopes
{
    F dx, dy; // differences of two pixels apart by two
    F middle; // the height
};

/// Weights 3, 10, 3 keep the slope's direction true under rotation (H. Scharr).
HWY_INLINE F scharrWeighted(F a, F b, F c)
{
    return (a + c) * F(3.0f / 16.0f) + b * F(10.0f / 16.0f);
}

/// From the row above, the row itself and the row below, read from pixel i - 1 to i + kLanes.
HWY_INLINE Slopes slopesAt(const float* const (&lines)[3], int i)
{
    const F left[3] = {loadAt(lines[0] + i - 1), loadAt(lines[1] + i - 1), loadAt(lines[2] + i - 1)};
    const F right[3] = {loadAt(lines[0] + i + 1), loadAt(lines[1] + i + 1), loadAt(lines[2] + i + 1)};
    const F above = loadAt(lines[0] + i), below = loadAt(lines[2] + i);
    return {scharrWeighted(right[0], right[1], right[2]) - scharrWeighted(left[0], left[1], left[2]),
            scharrWeighted(left[2] - left[0], below - above, right[2] - right[0]), loadAt(lines[1] + i)};
}

/// Hands the pixels of row y to `body(lines, count, x)`: pixels x to x + count - 1, for which slopesAt(lines,
/// i) holds with i counted from x. x is a multiple of a vector. Rows are read where they lie; only around the
/// picture's sides are they copied.
template<typename Body> HWY_INLINE void forSlopesOfRow(const ImageView& height, int y, const Body& body)
{
    const int width = height.width;
    const float* rows[3];
    for (int r = 0; r < 3; ++r)
        rows[r] = rowOf(height, 0, y + r - 1);
    const auto copied = [&](int from, int to) {
        alignas(64) float windows[3][3 * kLanes + 16];
        const float* lines[3];
        for (int r = 0; r < 3; ++r) {
            copyWrapped(rows[r], width, from - 1, to - from + kLanes + 1, windows[r]);
            lines[r] = windows[r] + 1;
        }
        body(lines, to - from, from);
    };
    const int inner = (width - 1) / kLanes * kLanes; // up to here vectors have their right neighbours
    copied(0, std::min(kLanes, width));
    if (inner > kLanes) {
        const float* const lines[3] = {rows[0] + kLanes, rows[1] + kLanes, rows[2] + kLanes};
        body(lines, inner - kLanes, kLanes);
    }
    if (width > kLanes)
        copied(std::max(inner, kLanes), width);
}

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
