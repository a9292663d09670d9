#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"

namespace vellor::nodes {
namespace {

struct ContrastState : State
{
    float factor = 1.0f, offset = 0.0f;
};

std::unique_ptr<State> prepareContrast(const Setup& setup)
{
    auto state = std::make_unique<ContrastState>();
    const float contrast = held(setup.parameters[1].f[0], -1.0f, 0.9999f);
    state->factor = contrast < 0.0f ? 1.0f + contrast : 1.0f / (1.0f - contrast);
    state->offset = 0.5f - 0.5f * state->factor + setup.parameters[0].f[0];
    return state;
}

void contrastRow(const RowJob& job)
{
    const auto& state = static_cast<const ContrastState&>(*job.state);
    for (int c = 0; c < job.channels; ++c) {
        // Alpha stays.
        const float factor = c < 3 ? state.factor : 1.0f, offset = c < 3 ? state.offset : 0.0f;
        for (int i = 0; i < job.count; ++i)
            job.result[c][i] = job.operands[c][i] * factor + offset;
    }
}

} // namespace

const NodeDeclaration contrastNode{
    "contrast",
    "Brightness and Contrast",
    "Tone",
    "Stretches values around the middle grey and shifts them: (x - 0.5) * k + 0.5 + brightness, k being 1 + "
    "contrast below 0 and 1 / (1 - contrast) above.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to change."}},
    {{"brightness", ParameterType::Float, {0.0}, -1, 1, "How much is added."},
     {"contrast",
      ParameterType::Float,
      {0.0},
      -1,
      1,
      "Below 0 flattens, above 0 steepens; -1 is grey, 1 two tones."}},
    prepareContrast,
    contrastRow};

} // namespace vellor::nodes
