#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/resampling.h"

#ifndef VELLOR_CARTESIANTOPOLAR_STATE
#define VELLOR_CARTESIANTOPOLAR_STATE
namespace vellor::nodes {
namespace {

struct CartesianToPolarState : State
{
    Reading reading;
    float radius = 1.0f, turn = 0.0f; // in pixels, in turns
    float x = 0.0f, y = 0.0f;         // the centre, in pixels
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/geometry/cartesiantopolar.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/resampling-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void cartesianToPolarArea(const AreaJob& job)
{
    const auto& state = static_cast<const CartesianToPolarState&>(*job.state);
    displace(
        job, job.operands[0], state.reading, [](const Tile&) {},
        [&](const Tile& tile, int i, int row) {
            const SinCos turn = sinCosOfTurns(centresFrom(tile.x + i, job.result.width) + F(state.turn));
            const F radius(centreOf(tile.y + row, job.result.height) * state.radius);
            return Spot{(turn.cosine * radius + F(state.x)) - countFrom(static_cast<float>(tile.x + i)),
                        (turn.sine * radius + F(state.y)) - F(static_cast<float>(tile.y + row))};
        });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(cartesianToPolarArea)

static std::unique_ptr<State> prepareCartesianToPolar(const Setup& setup)
{
    auto state = std::make_unique<CartesianToPolarState>();
    const ParameterValue* p = setup.parameters;
    state->radius = held(p[0].f[0], 1e-4f, 16.0f) * static_cast<float>(setup.width);
    state->turn = held(p[1].f[0], -1e4f, 1e4f);
    state->x = held(p[2].f[0], -16.0f, 16.0f) * static_cast<float>(setup.width) - 0.5f;
    state->y = held(p[2].f[1], -16.0f, 16.0f) * static_cast<float>(setup.height) - 0.5f;
    state->reading.filter = static_cast<PixelFilter>(held(p[3].i[0], 0, 2));
    return state;
}

const NodeDeclaration cartesiantopolarNode{
    "cartesiantopolar",
    "Cartesian to Polar",
    "Geometry",
    "Unrolls the rings around a centre: the angle runs right, the radius down.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to unroll."}},
    {{"radius",
      ParameterType::Float,
      {0.5},
      0,
      1,
      "The radius of the lowest row, in shares of the picture's width."},
     {"rotation",
      ParameterType::Float,
      {0.0},
      -1,
      1,
      "The angle of the left edge, clockwise from the right in turns."},
     {"centre", ParameterType::Float2, {0.5, 0.5}, 0, 1, "The centre, in shares of width and height."},
     filterParameter()},
    prepareCartesianToPolar,
    nullptr,
    runcartesianToPolarArea};

} // namespace vellor::nodes
#endif
