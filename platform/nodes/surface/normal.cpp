#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/rows.h"

#ifndef VELLOR_NORMAL_STATE
#define VELLOR_NORMAL_STATE
namespace vellor::nodes {
namespace {

struct NormalState : State
{
    float strengthX = 1.0f, strengthY = 1.0f; // factors of the difference of two pixels apart by two
    bool invertX = false, invertY = false;
    bool fullZ = false, dropZ = false, yInAlpha = false;
};

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

using Window = RowWindow<1>;

/// Weights 3, 10, 3 keep the slope's direction true under rotation (H. Scharr).
HWY_INLINE F weighted(F a, F b, F c)
{
    return (a + c) * F(3.0f / 16.0f) + b * F(10.0f / 16.0f);
}

HWY_INLINE F differenceX(const Window& row, int i)
{
    return loadAt(row.at(i + 1)) - loadAt(row.at(i - 1));
}

HWY_INLINE F differenceY(const Window& above, const Window& below, int i)
{
    return loadAt(below.at(i)) - loadAt(above.at(i));
}

void normalChunk(const NormalState& state, const Window (&rows)[3], int count, float* const (&result)[4])
{
    const F half(0.5f), zero(0.0f);
    const F signX(state.invertX ? -0.5f : 0.5f), signY(state.invertY ? -0.5f : 0.5f);
    for (int i = 0; i < count; i += kLanes) {
        const F dx = weighted(differenceX(rows[0], i), differenceX(rows[1], i), differenceX(rows[2], i));
        const F dy = weighted(differenceY(rows[0], rows[2], i - 1), differenceY(rows[0], rows[2], i),
                              differenceY(rows[0], rows[2], i + 1));
        const F nx = -dx * F(state.strengthX), ny = -dy * F(state.strengthY);
        const F z = F(1.0f) / sqrtOf(nx * nx + ny * ny + F(1.0f));
        const F x = half + signX * (nx * z), y = half + signY * (ny * z);
        storeAt(x, result[0] + i);
        storeAt(state.yInAlpha ? zero : y, result[1] + i);
        storeAt(state.dropZ ? zero : state.fullZ ? z : half + half * z, result[2] + i);
        storeAt(state.yInAlpha ? y : loadAt(rows[1].at(i)), result[3] + i);
    }
}

void normalArea(const AreaJob& job)
{
    const auto& state = static_cast<const NormalState&>(*job.state);
    const ImageView& height = job.operands[0];
    Window rows[3];
    for (int y = job.y0; y < job.y1; ++y) {
        for (int x = 0; x < job.result.width; x += kChunk) {
            const int count = std::min(kChunk, job.result.width - x);
            for (int r = 0; r < 3; ++r)
                rows[r].fill(height, 0, x, y + r - 1, count);
            float* const result[4] = {rowOf(job.result, 0, y) + x, rowOf(job.result, 1, y) + x,
                                      rowOf(job.result, 2, y) + x, rowOf(job.result, 3, y) + x};
            normalChunk(state, rows, count, result);
        }
    }
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
    const float strength = setup.parameters[0].f[0] * 0.01f * 0.5f * static_cast<float>(setup.width);
    const int format = setup.parameters[1].i[0];
    state->strengthX = strength;
    state->strengthY = strength;
    state->invertX = (format & 1) != 0;
    state->invertY = (format & 2) != 0;
    state->fullZ = (format & 4) != 0;
    state->dropZ = (format & 8) != 0;
    state->yInAlpha = (format & 12) == 12;
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
