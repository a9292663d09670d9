#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"

#include <algorithm>

namespace vellor::nodes {
namespace {

struct ThresholdState : State
{
    float low = 0.5f, factor = 1.0f;
};

std::unique_ptr<State> prepareThreshold(const Setup& setup)
{
    auto state = std::make_unique<ThresholdState>();
    const float softness = held(setup.parameters[1].f[0], 1e-6f, 10.0f);
    state->low = setup.parameters[0].f[0] - 0.5f * softness;
    state->factor = 1.0f / softness;
    return state;
}

void thresholdRow(const RowJob& job)
{
    const auto& state = static_cast<const ThresholdState&>(*job.state);
    for (int c = 0; c < std::min(job.channels, 3); ++c) {
        for (int i = 0; i < job.count; ++i) {
            const float t = held((job.operands[c][i] - state.low) * state.factor, 0.0f, 1.0f);
            job.result[c][i] = t * t * (3.0f - 2.0f * t);
        }
    }
    if (job.channels == 4)
        std::copy_n(job.operands[3], job.count, job.result[3]);
}

} // namespace

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
    thresholdRow};

} // namespace vellor::nodes
