#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/resampling.h"

#ifndef VELLOR_VECTORWARP_STATE
#define VELLOR_VECTORWARP_STATE
namespace vellor::nodes {
namespace {

struct VectorWarpState : State
{
    Reading reading;
    float reach = 0.0f; // in pixels, of a value of 1
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/geometry/vectorwarp.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/resampling-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void vectorWarpArea(const AreaJob& job)
{
    const auto& state = static_cast<const VectorWarpState&>(*job.state);
    const ImageView& field = job.operands[1];
    const F reach(state.reach);
    displace(
        job, job.operands[0], state.reading, [](const Tile&) {},
        [&](const Tile& tile, int i, int row) {
            const F right = loadOfMap(rowOf(field, 0, tile.y + row) + tile.x + i);
            const F down = loadOfMap(rowOf(field, 1, tile.y + row) + tile.x + i);
            return Spot{(right - F(0.5f)) * reach, (down - F(0.5f)) * reach};
        });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(vectorWarpArea)

static std::unique_ptr<State> prepareVectorWarp(const Setup& setup)
{
    auto state = std::make_unique<VectorWarpState>();
    state->reading.filter = static_cast<PixelFilter>(held(setup.parameters[1].i[0], 0, 2));
    state->reach =
        held(setup.parameters[0].f[0], -1000.0f, 1000.0f) * 0.02f * static_cast<float>(setup.width);
    return state;
}

const NodeDeclaration vectorwarpNode{
    "vectorwarp",
    "Vector Warp",
    "Geometry",
    "Takes each pixel from the place that red and green of a colour picture point to: it lies intensity / 50 "
    "* "
    "(red - 0.5) picture widths further right and intensity / 50 * (green - 0.5) widths further down. Wraps "
    "around.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to warp."},
     {"vectors", OperandChannels::Colour, true, "Red points right and green down; 0.5 stays."}},
    {{"intensity",
      ParameterType::Float,
      {5.0},
      -50,
      50,
      "How far a value of 1 points, in hundredths of the picture's width."},
     filterParameter()},
    prepareVectorWarp,
    nullptr,
    runvectorWarpArea};

} // namespace vellor::nodes
#endif
