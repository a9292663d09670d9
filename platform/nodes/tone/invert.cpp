#include "platform/nodes/kinds.h"

namespace vellor::nodes {
namespace {

struct InvertState : State
{
    std::array<bool, kMaxChannels> inverted{};
};

std::unique_ptr<State> prepareInvert(const Setup& setup)
{
    auto state = std::make_unique<InvertState>();
    state->inverted = {true, true, true, setup.parameters[0].i[0] != 0};
    return state;
}

void invertRow(const RowJob& job)
{
    const auto& state = static_cast<const InvertState&>(*job.state);
    for (int c = 0; c < job.channels; ++c) {
        const float one = state.inverted[c] ? 1.0f : 0.0f, sign = state.inverted[c] ? -1.0f : 1.0f;
        for (int i = 0; i < job.count; ++i)
            job.result[c][i] = one + sign * job.operands[c][i];
    }
}

} // namespace

const NodeDeclaration invertNode{
    "invert",
    "Invert",
    "Tone",
    "Gives 1 - x.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to invert."}},
    {{"alpha", ParameterType::Bool, {0}, 0, 1, "Inverts the alpha channel too."}},
    prepareInvert,
    invertRow};

} // namespace vellor::nodes
