#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/resampling.h"

#ifndef VELLOR_SPHERISE_STATE
#define VELLOR_SPHERISE_STATE
namespace vellor::nodes {
namespace {

struct SpheriseState : State
{
    Reading reading;
    float amount = 0.0f, inverseRadius = 1.0f; // per pixel
    float x = 0.0f, y = 0.0f;                  // the centre, in pixels
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/geometry/spherise.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/resampling-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void spheriseArea(const AreaJob& job)
{
    const auto& state = static_cast<const SpheriseState&>(*job.state);
    const bool bulge = state.amount >= 0.0f;
    displace(
        job, job.operands[0], state.reading, [](const Tile&) {},
        [&](const Tile& tile, int i, int row) {
            const F dx = aroundOf(countFrom(static_cast<float>(tile.x + i)) - F(state.x), job.result.width);
            const F dy = aroundOf(F(static_cast<float>(tile.y + row) - state.y), job.result.height);
            const F place = minOf(sqrtOf(dx * dx + dy * dy) * F(state.inverseRadius), F(1.0f));
            // A ball seen from far away, its surface measured along it; or the inside of one.
            const F along = bulge ? asinOf(place) * F(2.0f / kPi) : sinCosOfTurns(place * F(0.25f)).sine;
            const F away = (along - place) * F(bulge ? state.amount : -state.amount);
            const F share = away / maxOf(place, F(1e-6f));
            return Spot{dx * share, dy * share};
        });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(spheriseArea)

static std::unique_ptr<State> prepareSpherise(const Setup& setup)
{
    auto state = std::make_unique<SpheriseState>();
    const ParameterValue* p = setup.parameters;
    state->amount = held(p[0].f[0], -1.0f, 1.0f);
    state->inverseRadius = 1.0f / (held(p[1].f[0], 1e-4f, 4.0f) * static_cast<float>(setup.width));
    state->x = held(p[2].f[0], -16.0f, 16.0f) * static_cast<float>(setup.width) - 0.5f;
    state->y = held(p[2].f[1], -16.0f, 16.0f) * static_cast<float>(setup.height) - 0.5f;
    state->reading.filter = static_cast<PixelFilter>(held(p[3].i[0], 0, 2));
    return state;
}

const NodeDeclaration spheriseNode{
    "spherise",
    "Spherise",
    "Geometry",
    "Draws a picture over a ball seen from far away, or into a bowl. Wraps around.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to draw."}},
    {{"amount", ParameterType::Float, {1.0}, -1, 1, "1 is a whole ball, 0 changes nothing, -1 is a bowl."},
     {"radius",
      ParameterType::Float,
      {0.5},
      0,
      1,
      "The ball's radius, in shares of the picture's width; up to a half, the result tiles."},
     {"centre", ParameterType::Float2, {0.5, 0.5}, 0, 1, "The centre, in shares of width and height."},
     filterParameter()},
    prepareSpherise,
    nullptr,
    runspheriseArea};

} // namespace vellor::nodes
#endif
