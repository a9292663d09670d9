#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"

#ifndef VELLOR_HISTOGRAMRANGE_STATE
#define VELLOR_HISTOGRAMRANGE_STATE
namespace vellor::nodes {
namespace {

struct HistogramrangeState : State
{
    float range = 1.0f, low = 0.0f;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/histogramrange.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void histogramrangeRow(const RowJob& job)
{
    const auto& state = static_cast<const HistogramrangeState&>(*job.state);
    const F range(state.range), low(state.low);
    mapTones(job, [=](F x) { return x * range + low; });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(histogramrangeRow)

static std::unique_ptr<State> prepareHistogramrange(const Setup& setup)
{
    auto state = std::make_unique<HistogramrangeState>();
    state->range = held(setup.parameters[0].f[0], 0.0f, 1.0f);
    state->low = held(setup.parameters[1].f[0], 0.0f, 1.0f) * (1.0f - state->range);
    return state;
}

const NodeDeclaration histogramrangeNode{
    "histogramrange",
    "Histogram Range",
    "Tone",
    "Squeezes 0 to 1 into a narrower range around a position.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to change."}},
    {{"range", ParameterType::Float, {0.5}, 0, 1, "Width of the range that is left."},
     {"position", ParameterType::Float, {0.5}, 0, 1, "Where the range lies: 0 at black, 1 at white."}},
    prepareHistogramrange,
    runhistogramrangeRow};

} // namespace vellor::nodes
#endif
