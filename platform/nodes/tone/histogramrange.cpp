#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"

namespace vellor::nodes {
namespace {

struct HistogramrangeState : State
{
    float range = 1.0f, low = 0.0f;
};

std::unique_ptr<State> prepareHistogramrange(const Setup& setup)
{
    auto state = std::make_unique<HistogramrangeState>();
    state->range = held(setup.parameters[0].f[0], 0.0f, 1.0f);
    state->low = held(setup.parameters[1].f[0], 0.0f, 1.0f) * (1.0f - state->range);
    return state;
}

void histogramrangeRow(const RowJob& job)
{
    const auto& state = static_cast<const HistogramrangeState&>(*job.state);
    for (int c = 0; c < job.channels; ++c) {
        const float factor = c < 3 ? state.range : 1.0f, offset = c < 3 ? state.low : 0.0f;
        for (int i = 0; i < job.count; ++i)
            job.result[c][i] = job.operands[c][i] * factor + offset;
    }
}

} // namespace

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
    histogramrangeRow};

} // namespace vellor::nodes
