#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/resampling.h"

#ifndef VELLOR_POLARTOCARTESIAN_STATE
#define VELLOR_POLARTOCARTESIAN_STATE
namespace vellor::nodes {
namespace {

struct PolarToCartesianState : State
{
    Reading reading;
    float radius = 1.0f, turn = 0.0f; // in pixels, in turns
    float x = 0.0f, y = 0.0f;         // the centre, in pixels
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/geometry/polartocartesian.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/resampling-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void polarToCartesianArea(const AreaJob& job)
{
    const auto& state = static_cast<const PolarToCartesianState&>(*job.state);
    const float width = static_cast<float>(job.result.width), height = static_cast<float>(job.result.height);
    displace(
        job, job.operands[0], state.reading, [](const Tile&) {},
        [&](const Tile& tile, int i, int row) {
            const F x = countFrom(static_cast<float>(tile.x + i));
            const F y(static_cast<float>(tile.y + row));
            const F dx = x - F(state.x), dy = y - F(state.y);
            const F turn = atan2Of(dy, dx) * F(0.5f / kPi) - F(state.turn);
            const F across = (turn - floorOf(turn)) * F(width) - F(0.5f);
            const F down = sqrtOf(dx * dx + dy * dy) * F(height / state.radius) - F(0.5f);
            // The first and the last row go on to the middle and to the corners.
            return Spot{across - x, clampOf(down, F(0.0f), F(height - 1.0f)) - y};
        });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(polarToCartesianArea)

static std::unique_ptr<State> preparePolarToCartesian(const Setup& setup)
{
    auto state = std::make_unique<PolarToCartesianState>();
    const ParameterValue* p = setup.parameters;
    state->radius = held(p[0].f[0], 1e-4f, 16.0f) * static_cast<float>(setup.width);
    state->turn = held(p[1].f[0], -1e4f, 1e4f);
    state->x = held(p[2].f[0], -16.0f, 16.0f) * static_cast<float>(setup.width) - 0.5f;
    state->y = held(p[2].f[1], -16.0f, 16.0f) * static_cast<float>(setup.height) - 0.5f;
    state->reading.filter = static_cast<PixelFilter>(held(p[3].i[0], 0, 2));
    return state;
}

const NodeDeclaration polartocartesianNode{
    "polartocartesian",
    "Polar to Cartesian",
    "Geometry",
    "Rolls a picture up around a centre: what runs right goes around, what runs down goes outwards. The "
    "lowest "
    "row goes on beyond the radius.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to roll up."}},
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
    preparePolarToCartesian,
    nullptr,
    runpolarToCartesianArea};

} // namespace vellor::nodes
#endif
