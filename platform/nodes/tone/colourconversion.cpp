#include "platform/nodes/kinds.h"

#include <algorithm>

namespace vellor::nodes {
namespace {

struct ColourState : State
{
    float alpha = 1.0f;
};

std::unique_ptr<State> prepareColour(const Setup& setup)
{
    auto state = std::make_unique<ColourState>();
    state->alpha = setup.parameters[0].f[0];
    return state;
}

void colourRow(const RowJob& job)
{
    for (int c = 0; c < 3; ++c)
        std::copy_n(job.operands[0], job.count, job.result[c]);
    std::fill_n(job.result[3], job.count, static_cast<const ColourState&>(*job.state).alpha);
}

} // namespace

const NodeDeclaration colourconversionNode{
    "colourconversion",
    "Grey to Colour",
    "Tone",
    "Puts a grey picture into red, green and blue.",
    ResultChannels::Colour,
    Chance::None,
    {{"input", OperandChannels::Grey, true, "The grey picture."}},
    {{"alpha", ParameterType::Float, {1.0}, 0, 1, "The result's alpha."}},
    prepareColour,
    colourRow};

} // namespace vellor::nodes
