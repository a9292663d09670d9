#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/resampling.h"
#include "platform/nodes/scalar.h"

#ifndef VELLOR_DIRECTIONALWARP_STATE
#define VELLOR_DIRECTIONALWARP_STATE
namespace vellor::nodes {
namespace {

struct DirectionalWarpState : State
{
    Reading reading;
    float right = 0.0f, down = 0.0f; // in pixels, of a value of 1
    float middle = 0.0f;             // the value that stays
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/geometry/directionalwarp.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/resampling-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void directionalWarpArea(const AreaJob& job)
{
    const auto& state = static_cast<const DirectionalWarpState&>(*job.state);
    displace(
        job, job.operands[0], state.reading, [](const Tile&) {},
        [&](const Tile& tile, int i, int row) {
            const F length =
                loadOfMap(rowOf(job.operands[1], 0, tile.y + row) + tile.x + i) - F(state.middle);
            return Spot{length * F(state.right), length * F(state.down)};
        });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(directionalWarpArea)

static std::unique_ptr<State> prepareDirectionalWarp(const Setup& setup)
{
    auto state = std::make_unique<DirectionalWarpState>();
    const ParameterValue* p = setup.parameters;
    const float reach = held(p[0].f[0], -1000.0f, 1000.0f) * 0.01f * static_cast<float>(setup.width);
    const scalar::SinCos turn = scalar::sinCosOfTurns(held(p[1].f[0], -1e4f, 1e4f));
    // The picture moves along the angle: its pixels come from the other way.
    state->right = -turn.cosine * reach;
    state->down = -turn.sine * reach;
    state->middle = held(p[2].f[0], -1e3f, 1e3f);
    state->reading.filter = static_cast<PixelFilter>(held(p[3].i[0], 0, 2));
    return state;
}

const NodeDeclaration directionalwarpNode{
    "directionalwarp",
    "Directional Warp",
    "Geometry",
    "Moves a picture along an angle, each place as far as a map says. Wraps around.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to warp."},
     {"map", OperandChannels::Grey, true, "How far each place moves."}},
    {{"intensity",
      ParameterType::Float,
      {10.0},
      -50,
      50,
      "How far a value of 1 moves, in hundredths of the picture's width."},
     {"angle", ParameterType::Float, {0.0}, 0, 1, "The direction, clockwise from the right in turns."},
     {"middle", ParameterType::Float, {0.0}, 0, 1, "The value of the map that stays; 0.5 moves both ways."},
     filterParameter()},
    prepareDirectionalWarp,
    nullptr,
    rundirectionalWarpArea};

} // namespace vellor::nodes
#endif
