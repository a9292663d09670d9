#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"

#ifndef VELLOR_HEIGHTBLEND_STATE
#define VELLOR_HEIGHTBLEND_STATE
namespace vellor::nodes {
namespace {

struct HeightblendState : State
{
    float offset = 0.0f, factor = 1.0f;
    bool mask = false;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/combining/heightblend.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

template<bool givesMask> void blendHeights(const RowJob& job, const HeightblendState& state)
{
    const float *top = job.operands[0], *bottom = job.operands[kMaxChannels],
                *mask = job.operands[2 * kMaxChannels];
    const ResultRow result(job, 0);
    const F offset(state.offset), factor(state.factor);
    const int count = job.count;
    for (int i = 0; i < count; i += kLanes) {
        const F low = load(bottom + i);
        const F raised = load(top + i) + offset + (mask ? load(mask + i) * F(2.0f) - F(2.0f) : F(0.0f));
        const F t = clampOf((raised - low) * factor + F(0.5f), F(0.0f), F(1.0f));
        const F weight = t * t * (F(3.0f) - F(2.0f) * t);
        result.put(i, givesMask ? weight : low + (raised - low) * weight);
    }
}

void heightblendRow(const RowJob& job)
{
    const auto& state = static_cast<const HeightblendState&>(*job.state);
    if (state.mask)
        blendHeights<true>(job, state);
    else
        blendHeights<false>(job, state);
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_PUTTING_ROW_KERNEL(heightblendRow)

static std::unique_ptr<State> prepareHeightblend(const Setup& setup)
{
    auto state = std::make_unique<HeightblendState>();
    state->offset = setup.parameters[0].f[0];
    state->factor = 1.0f / held(setup.parameters[1].f[0], 1e-5f, 10.0f);
    state->mask = setup.parameters[2].i[0] == 1;
    return state;
}

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
    runheightblendRow};

} // namespace vellor::nodes
#endif
