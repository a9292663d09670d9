#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

#include <algorithm>

namespace vellor::nodes {
namespace {

struct PosteriseState : State
{
    float steps = 4.0f, factor = 1e6f;
};

std::unique_ptr<State> preparePosterise(const Setup& setup)
{
    auto state = std::make_unique<PosteriseState>();
    state->steps = static_cast<float>(held(setup.parameters[0].i[0], 2, 65536));
    state->factor = 1.0f / held(setup.parameters[1].f[0], 1e-6f, 1.0f);
    return state;
}

void posteriseRow(const RowJob& job)
{
    const auto& state = static_cast<const PosteriseState&>(*job.state);
    for (int c = 0; c < std::min(job.channels, 3); ++c) {
        for (int i = 0; i < job.count; ++i) {
            // Halves, where edges lie, are in the middle of the rise from one whole number to the next.
            const float position = held(job.operands[c][i], 0.0f, 1.0f) * (state.steps - 1.0f);
            const float step = scalar::floorOf(position);
            const float rise = held((position - step - 0.5f) * state.factor + 0.5f, 0.0f, 1.0f);
            job.result[c][i] = (step + rise) / (state.steps - 1.0f);
        }
    }
    if (job.channels == 4)
        std::copy_n(job.operands[3], job.count, job.result[3]);
}

} // namespace

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
    posteriseRow};

} // namespace vellor::nodes
