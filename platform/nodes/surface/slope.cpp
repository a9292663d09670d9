#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"

#ifndef VELLOR_SLOPE_STATE
#define VELLOR_SLOPE_STATE
namespace vellor::nodes {
namespace {

struct SlopeState : State
{
    bool direction = false;
    float strength = 1.0f;                // factor of the difference of two pixels apart by two
    float low = 0.0f, inverseSpan = 1.0f; // radians
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/surface/slope.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/surface/slopes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

HWY_INLINE F slopeValue(const SlopeState& state, const Slopes& slopes)
{
    const F dx = slopes.dx * F(state.strength), dy = slopes.dy * F(state.strength);
    if (state.direction) {
        const F turns = atan2Of(-dy, -dx) * F(0.5f / kPi);
        return turns - floorOf(turns);
    }
    const F angle = atanOf(sqrtOf(dx * dx + dy * dy));
    return clampOf((angle - F(state.low)) * F(state.inverseSpan), F(0.0f), F(1.0f));
}

void slopeArea(const AreaJob& job)
{
    const auto& state = static_cast<const SlopeState&>(*job.state);
    for (int y = job.y0; y < job.y1; ++y) {
        float* result = rowOf(job.result, 0, y);
        forSlopesOfRow(job.operands[0], y, [&](const float* const(&lines)[3], int count, int x) {
            for (int i = 0; i < count; i += kLanes)
                store(slopeValue(state, slopesAt(lines, i)), result + x + i);
        });
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(slopeArea)

static std::unique_ptr<State> prepareSlope(const Setup& setup)
{
    auto state = std::make_unique<SlopeState>();
    const ParameterValue* p = setup.parameters;
    constexpr float kRightAngle = 1.57079633f;
    state->strength = held(p[0].f[0], 0.0f, 1e4f) * 0.01f * 0.5f * static_cast<float>(setup.width);
    state->low = held(p[1].f[0], 0.0f, 1.0f) * kRightAngle;
    state->inverseSpan = 1.0f / std::max(held(p[2].f[0], 0.0f, 1.0f) * kRightAngle - state->low, 1e-4f);
    state->direction = p[3].i[0] == 1;
    return state;
}

const NodeDeclaration slopeNode{
    "slope",
    "Slope",
    "Surface",
    "How steep a height map is, or where its slopes face, from differences weighed after H. Scharr. The "
    "result "
    "does not depend on the resolution.",
    ResultChannels::Grey,
    Chance::None,
    {{"height", OperandChannels::Grey, true, "The height map."}},
    {{"intensity",
      ParameterType::Float,
      {3.0},
      0,
      50,
      "How far white stands above black, in hundredths of the picture's width."},
     {"low",
      ParameterType::Float,
      {0.0},
      0,
      1,
      "The steepness that gives black, in shares of a right angle."},
     {"high", ParameterType::Float, {0.5}, 0, 1, "The steepness that gives white."},
     {"output",
      ParameterType::Choice,
      {0},
      0,
      1,
      "steepness is the angle with the plane; direction is where water runs, in turns clockwise from the "
      "right.",
      {"steepness", "direction"}}},
    prepareSlope,
    nullptr,
    runslopeArea};

} // namespace vellor::nodes
#endif
