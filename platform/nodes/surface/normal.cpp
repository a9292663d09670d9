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

#include "platform/nodes/surface/slopes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

template<bool streamed> HWY_INLINE void put(F value, float* p)
{
    if constexpr (streamed)
        hn::Stream(value.v, FloatTag(), p);
    else
        store(value, p);
}

/// Streamed stores spare large pictures the reading of what they overwrite.
template<bool streamed, bool yInAlpha>
void normalRow(const NormalState& state, const ImageView& height, int y, float* const (&result)[4])
{
    const F half(0.5f), one(1.0f), strength(-state.strength);
    const F signX(state.invertX ? -0.5f : 0.5f), signY(state.invertY ? -0.5f : 0.5f);
    const F baseZ(state.baseZ), gainZ(state.gainZ);
    forSlopesOfRow(height, y, [&](const float* const(&lines)[3], int count, int x) {
        for (int i = 0; i < count; i += kLanes) {
            const Slopes slopes = slopesAt(lines, i);
            const F nx = slopes.dx * strength, ny = slopes.dy * strength;
            const F z = one / sqrtOf(nx * nx + ny * ny + one);
            const F green = half + signY * (ny * z);
            put<streamed>(half + signX * (nx * z), result[0] + x + i);
            put<streamed>(yInAlpha ? F(0.0f) : green, result[1] + x + i);
            put<streamed>(baseZ + gainZ * z, result[2] + x + i);
            put<streamed>(yInAlpha ? green : slopes.middle, result[3] + x + i);
        }
    });
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
