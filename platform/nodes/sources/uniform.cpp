#include "platform/nodes/kinds.h"

#include <algorithm>

namespace vellor::nodes {
namespace {

struct UniformState : State
{
    std::array<float, kMaxChannels> value{};
};

std::unique_ptr<State> prepareUniform(const Setup& setup)
{
    auto state = std::make_unique<UniformState>();
    state->value = setup.parameters[0].f;
    return state;
}

void uniformRow(const RowJob& job)
{
    const auto& state = static_cast<const UniformState&>(*job.state);
    for (int c = 0; c < job.channels; ++c)
        std::fill_n(job.result[c], job.count, state.value[c]);
}

} // namespace

const NodeDeclaration uniformNode{
    "uniform",
    "Uniform Colour",
    "Sources",
    "Fills the picture with one value.",
    ResultChannels::Chosen,
    Chance::None,
    {},
    {{"colour",
      ParameterType::Float4,
      {0.0, 0.0, 0.0, 1.0},
      0.0,
      1.0,
      "The colour as red, green, blue and alpha; a grey result takes the first component."}},
    prepareUniform,
    uniformRow};

} // namespace vellor::nodes
