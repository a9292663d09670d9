#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/resampling.h"

#ifndef VELLOR_SWIRL_STATE
#define VELLOR_SWIRL_STATE
namespace vellor::nodes {
namespace {

struct SwirlState : State
{
    Reading reading;
    float turns = 0.0f, inverseRadius = 1.0f; // per pixel
    float x = 0.0f, y = 0.0f;                 // the centre, in pixels
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/geometry/swirl.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/resampling-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void swirlArea(const AreaJob& job)
{
    const auto& state = static_cast<const SwirlState&>(*job.state);
    displace(
        job, job.operands[0], state.reading, [](const Tile&) {},
        [&](const Tile& tile, int i, int row) {
            const F dx = aroundOf(countFrom(static_cast<float>(tile.x + i)) - F(state.x), job.result.width);
            const F dy = aroundOf(F(static_cast<float>(tile.y + row) - state.y), job.result.height);
            const F rest = maxOf(F(1.0f) - sqrtOf(dx * dx + dy * dy) * F(state.inverseRadius), F(0.0f));
            const SinCos turn = sinCosOfTurns(rest * rest * F(state.turns));
            return Spot{dx * turn.cosine + dy * turn.sine - dx, dy * turn.cosine - dx * turn.sine - dy};
        });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(swirlArea)

static std::unique_ptr<State> prepareSwirl(const Setup& setup)
{
    auto state = std::make_unique<SwirlState>();
    const ParameterValue* p = setup.parameters;
    state->turns = held(p[0].f[0], -1000.0f, 1000.0f);
    state->inverseRadius = 1.0f / (held(p[1].f[0], 1e-4f, 4.0f) * static_cast<float>(setup.width));
    state->x = held(p[2].f[0], -16.0f, 16.0f) * static_cast<float>(setup.width) - 0.5f;
    state->y = held(p[2].f[1], -16.0f, 16.0f) * static_cast<float>(setup.height) - 0.5f;
    state->reading.filter = static_cast<PixelFilter>(held(p[3].i[0], 0, 2));
    return state;
}

const NodeDeclaration swirlNode{
    "swirl",
    "Swirl",
    "Geometry",
    "Turns a picture around a centre, less and less towards a radius. Wraps around.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to turn."}},
    {{"amount", ParameterType::Float, {0.5}, -4, 4, "How far the centre turns clockwise, in turns."},
     {"radius",
      ParameterType::Float,
      {0.5},
      0,
      1,
      "Where the turn ends, in shares of the picture's width; up to a half, the result tiles."},
     {"centre", ParameterType::Float2, {0.5, 0.5}, 0, 1, "The centre, in shares of width and height."},
     filterParameter()},
    prepareSwirl,
    nullptr,
    runswirlArea};

} // namespace vellor::nodes
#endif
