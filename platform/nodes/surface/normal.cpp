#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/rows.h"

#include <hwy/cache_control.h>

#ifndef VELLOR_NORMAL_STATE
#define VELLOR_NORMAL_STATE
namespace vellor::nodes {
namespace {

struct NormalState : State
{
    float strength = 1.0f; // factor of the difference of two pixels apart by two
    float baseZ = 0.5f, gainZ = 0.5f;
    bool invertX = false, invertY = false, yInAlpha = false;
};

// From here on the four planes of the result go past every cache before anybody reads them.
constexpr std::int64_t kStreamedPixels = 1 << 21;

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/surface/normal.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

/// A vector of pixels and its neighbours, read from lines that may be read one pixel beyond on either side.
struct Slopes
{
    F dx, dy; // differences of two pixels apart by two
    F middle;
};

/// Weights 3, 10, 3 keep the slope's direction true under rotation (H. Scharr).
HWY_INLINE F weighted(F a, F b, F c)
{
    return (a + c) * F(3.0f / 16.0f) + b * F(10.0f / 16.0f);
}

HWY_INLINE Slopes slopesAt(const float* const (&lines)[3], int i)
{
    const F left[3] = {loadAt(lines[0] + i - 1), loadAt(lines[1] + i - 1), loadAt(lines[2] + i - 1)};
    const F right[3] = {loadAt(lines[0] + i + 1), loadAt(lines[1] + i + 1), loadAt(lines[2] + i + 1)};
    const F above = loadAt(lines[0] + i), below = loadAt(lines[2] + i);
    return {weighted(right[0], right[1], right[2]) - weighted(left[0], left[1], left[2]),
            weighted(left[2] - left[0], below - above, right[2] - right[0]), loadAt(lines[1] + i)};
}

template<bool streamed> HWY_INLINE void put(F value, float* p)
{
    if constexpr (streamed)
        hn::Stream(value.v, FloatTag(), p);
    else
        store(value, p);
}

/// Results lie at multiples of a vector. Streamed stores spare large pictures the reading of what they
/// overwrite.
template<bool streamed, bool yInAlpha>
void normalVectors(const NormalState& state, const float* const (&lines)[3], float* const (&result)[4],
                   int from, int to)
{
    const F half(0.5f), one(1.0f), strength(-state.strength);
    const F signX(state.invertX ? -0.5f : 0.5f), signY(state.invertY ? -0.5f : 0.5f);
    const F baseZ(state.baseZ), gainZ(state.gainZ);
    for (int i = from; i < to; i += kLanes) {
        const Slopes slopes = slopesAt(lines, i);
        const F nx = slopes.dx * strength, ny = slopes.dy * strength;
        const F z = one / sqrtOf(nx * nx + ny * ny + one);
        const F y = half + signY * (ny * z);
        put<streamed>(half + signX * (nx * z), result[0] + i);
        put<streamed>(yInAlpha ? F(0.0f) : y, result[1] + i);
        put<streamed>(baseZ + gainZ * z, result[2] + i);
        put<streamed>(yInAlpha ? y : slopes.middle, result[3] + i);
    }
}

template<bool streamed, bool yInAlpha>
void normalRow(const NormalState& state, const ImageView& height, int y, float* const (&result)[4])
{
    const int width = height.width;
    const float* rows[3];
    for (int r = 0; r < 3; ++r)
        rows[r] = rowOf(height, 0, y + r - 1);
    // The first vector of a row and its last ones have neighbours across the picture's sides.
    const auto edge = [&](int from, int to) {
        alignas(64) float windows[3][3 * kLanes + 32];
        const float* lines[3];
        for (int r = 0; r < 3; ++r) {
            copyWrapped(rows[r], width, from - 1, to - from + kLanes + 1, windows[r]);
            lines[r] = windows[r] + 1;
        }
        float* const places[4] = {result[0] + from, result[1] + from, result[2] + from, result[3] + from};
        normalVectors<streamed, yInAlpha>(state, lines, places, 0, to - from);
    };
    const int inner = (width - 1) / kLanes * kLanes; // up to here vectors have their right neighbours
    edge(0, std::min(kLanes, width));
    if (inner > kLanes)
        normalVectors<streamed, yInAlpha>(state, rows, result, kLanes, inner);
    if (width > kLanes)
        edge(std::max(inner, kLanes), width);
}

template<bool streamed, bool yInAlpha> void normalRows(const AreaJob& job)
{
    const auto& state = static_cast<const NormalState&>(*job.state);
    for (int y = job.y0; y < job.y1; ++y)
        normalRow<streamed, yInAlpha>(state, job.operands[0], y,
                                      {rowOf(job.result, 0, y), rowOf(job.result, 1, y),
                                       rowOf(job.result, 2, y), rowOf(job.result, 3, y)});
    if (streamed)
        hwy::FlushStream();
}

void normalArea(const AreaJob& job)
{
    const auto& state = static_cast<const NormalState&>(*job.state);
    const bool large = std::int64_t(job.result.width) * job.result.height >= kStreamedPixels;
    if (large)
        state.yInAlpha ? normalRows<true, true>(job) : normalRows<true, false>(job);
    else
        state.yInAlpha ? normalRows<false, true>(job) : normalRows<false, false>(job);
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(normalArea)

static std::unique_ptr<State> prepareNormal(const Setup& setup)
{
    auto state = std::make_unique<NormalState>();
    // One hundredth of the width per unit; half for the distance of two pixels. Pixels are square.
    state->strength = setup.parameters[0].f[0] * 0.01f * 0.5f * static_cast<float>(setup.width);
    const int format = setup.parameters[1].i[0];
    state->invertX = (format & 1) != 0;
    state->invertY = (format & 2) != 0;
    state->yInAlpha = (format & 12) == 12;
    state->baseZ = (format & 12) == 0 ? 0.5f : 0.0f;
    state->gainZ = (format & 8) != 0 ? 0.0f : (format & 4) != 0 ? 1.0f : 0.5f;
    return state;
}

const NodeDeclaration normalNode{
    "normal",
    "Normal",
    "Surface",
    "Tangent space normals of a height map: the normalised vector (-dh/dx, -dh/dy, 1), y pointing down the "
    "picture, with "
    "slopes after H. Scharr. The strength does not depend on the resolution. Alpha carries the height.",
    ResultChannels::Colour,
    Chance::None,
    {{"height", OperandChannels::Grey, true, "The height map."}},
    {{"intensity",
      ParameterType::Float,
      {3.0},
      -50,
      50,
      "How far white stands above black, in hundredths of the picture's width."},
     {"format",
      ParameterType::Int,
      {0},
      0,
      15,
      "Bit 0 inverts x, bit 1 inverts y; bit 2 stores z as 0 to 1 and not as -1 to 1; bit 3 leaves z out; "
      "bits 2 and 3 "
      "together leave z out and move y from green to alpha."}},
    prepareNormal,
    nullptr,
    runnormalArea};

} // namespace vellor::nodes
#endif
