#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"

#ifndef VELLOR_THRESHOLD_STATE
#define VELLOR_THRESHOLD_STATE
namespace vellor::nodes {
namespace {

struct ThresholdState : State
{
    float low = 0.5f, factor = 1.0f;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/threshold.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void thresholdRow(const RowJob& job)
{
    const auto& state = static_cast<const ThresholdState&>(*job.state);
    const F low(state.low), factor(state.factor);
    mapTones(job, [=](F x) {
        const F t = clampOf((x - low) * factor, F(0.0f), F(1.0f));
        return t * t * (F(3.0f) - F(2.0f) * t);
    });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(thresholdRow)

static std::unique_ptr<State> prepareThreshold(const Setup& setup)
{
    auto state = std::make_unique<ThresholdState>();
    const float softness = held(setup.parameters[1].f[0], 1e-6f, 10.0f);
    state->low = setup.parameters[0].f[0] - 0.5f * softness;
    state->factor = 1.0f / softness;
    return state;
}

const NodeDeclaration thresholdNode{
    "threshold",
    "Threshold",
    "Tone",
    "White where the picture is above a threshold, black elsewhere, with a smooth edge between.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to change."}},
    {{"threshold", ParameterType::Float, {0.5}, 0, 1, "Where black turns into white."},
     {"softness",
      ParameterType::Float,
      {0.02},
      0,
      1,
      "Width of the smooth edge in steps of grey; 0 is hard."}},
    prepareThreshold,
    runthresholdRow};

} // namespace vellor::nodes
#endif
