#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"

namespace vellor::nodes {
namespace {

struct HeightblendState : State
{
    float offset = 0.0f, factor = 1.0f;
    bool mask = false;
};

std::unique_ptr<State> prepareHeightblend(const Setup& setup)
{
    auto state = std::make_unique<HeightblendState>();
    state->offset = setup.parameters[0].f[0];
    state->factor = 1.0f / held(setup.parameters[1].f[0], 1e-5f, 10.0f);
    state->mask = setup.parameters[2].i[0] == 1;
    return state;
}

void heightblendRow(const RowJob& job)
{
    const auto& state = static_cast<const HeightblendState&>(*job.state);
    const float *top = job.operands[0], *bottom = job.operands[kMaxChannels],
                *mask = job.operands[2 * kMaxChannels];
    for (int i = 0; i < job.count; ++i) {
        const float raised = top[i] + state.offset + (mask ? mask[i] * 2.0f - 2.0f : 0.0f);
        const float t = held((raised - bottom[i]) * state.factor + 0.5f, 0.0f, 1.0f);
        const float weight = t * t * (3.0f - 2.0f * t);
        job.result[0][i] = state.mask ? weight : bottom[i] + (raised - bottom[i]) * weight;
    }
}

} // namespace

const NodeDeclaration heightblendNode{
    "heightblend",
    "Height Blend",
    "Combining",
    "Lays one height map into another: what stands higher shows, with a soft seam.",
    ResultChannels::Grey,
    Chance::None,
    {{"top", OperandChannels::Grey, true, "The height map laid on."},
     {"bottom", OperandChannels::Grey, true, "The height map below."},
     {"mask", OperandChannels::Grey, false, "Lowers the top where it is black."}},
    {{"offset", ParameterType::Float, {0.0}, -1, 1, "How far the top is raised."},
     {"softness",
      ParameterType::Float,
      {0.1},
      0,
      1,
      "Difference in height over which one gives way to the other."},
     {"output",
      ParameterType::Choice,
      {0},
      0,
      1,
      "The blended height, or the mask that is white where the top shows.",
      {"height", "mask"}}},
    prepareHeightblend,
    heightblendRow};

} // namespace vellor::nodes
