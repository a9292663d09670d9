#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"

#ifndef VELLOR_HISTOGRAMSHIFT_STATE
#define VELLOR_HISTOGRAMSHIFT_STATE
namespace vellor::nodes {
namespace {

struct HistogramshiftState : State
{
    float shift = 0.0f;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/histogramshift.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void histogramshiftRow(const RowJob& job)
{
    const F shift(static_cast<const HistogramshiftState&>(*job.state).shift);
    mapTones(job, [=](F x) {
        const F moved = x + shift;
        return moved - floorOf(moved);
    });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(histogramshiftRow)

static std::unique_ptr<State> prepareHistogramshift(const Setup& setup)
{
    auto state = std::make_unique<HistogramshiftState>();
    state->shift = held(setup.parameters[0].f[0], -1e3f, 1e3f);
    return state;
}

const NodeDeclaration histogramshiftNode{
    "histogramshift",
    "Histogram Shift",
    "Tone",
    "Moves all tones up or down; what leaves 0 to 1 on one side comes in on the other.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to change."}},
    {{"shift", ParameterType::Float, {0.5}, -1, 1, "How far."}},
    prepareHistogramshift,
    runhistogramshiftRow};

} // namespace vellor::nodes
#endif
