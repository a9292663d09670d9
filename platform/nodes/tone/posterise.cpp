#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"

#ifndef VELLOR_POSTERISE_STATE
#define VELLOR_POSTERISE_STATE
namespace vellor::nodes {
namespace {

struct PosteriseState : State
{
    float spans = 3.0f, factor = 1e6f;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/posterise.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void posteriseRow(const RowJob& job)
{
    const auto& state = static_cast<const PosteriseState&>(*job.state);
    const F spans(state.spans), factor(state.factor);
    mapTones(job, [=](F x) {
        // Halves, where edges lie, are in the middle of the rise from one whole number to the next.
        const F position = clampOf(x, F(0.0f), F(1.0f)) * spans;
        const F step = floorOf(position);
        const F rise = clampOf((position - step - F(0.5f)) * factor + F(0.5f), F(0.0f), F(1.0f));
        return (step + rise) / spans;
    });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(posteriseRow)

static std::unique_ptr<State> preparePosterise(const Setup& setup)
{
    auto state = std::make_unique<PosteriseState>();
    state->spans = static_cast<float>(held(setup.parameters[0].i[0], 2, 65536) - 1);
    state->factor = 1.0f / held(setup.parameters[1].f[0], 1e-6f, 1.0f);
    return state;
}

const NodeDeclaration posteriseNode{
    "posterise",
    "Posterise",
    "Tone",
    "Reduces the tones to a number of even steps, each with a smooth edge if wanted.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to change."}},
    {{"steps", ParameterType::Int, {4}, 2, 256, "How many tones are left."},
     {"softness", ParameterType::Float, {0.0}, 0, 1, "How much of a step its edge takes."}},
    preparePosterise,
    runposteriseRow};

} // namespace vellor::nodes
#endif
