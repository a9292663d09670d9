#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

#include <algorithm>

#ifndef VELLOR_CROSSFADE_STATE
#define VELLOR_CROSSFADE_STATE
namespace vellor::nodes {
namespace {

struct CrossfadeState : State
{
    int from = 0, to = 0; // operands
    float share = 0.0f;   // of the second
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/combining/crossfade.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void crossfadeRow(const RowJob& job)
{
    const auto& state = static_cast<const CrossfadeState&>(*job.state);
    const F share(state.share);
    for (int c = 0; c < job.channels; ++c) {
        const float* from = job.operands[state.from * kMaxChannels + c];
        const float* to = job.operands[state.to * kMaxChannels + c];
        const ResultRow result(job, c);
        for (int i = 0; i < job.count; i += kLanes)
            result.put(i, lerpOf(load(from + i), load(to + i), share));
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_PUTTING_ROW_KERNEL(crossfadeRow)

static std::unique_ptr<State> prepareCrossfade(const Setup& setup)
{
    std::vector<int> connected;
    for (std::size_t i = 0; i < setup.operandCount; ++i)
        if (setup.operands[i].channels > 0)
            connected.push_back(static_cast<int>(i));
    auto state = std::make_unique<CrossfadeState>();
    if (connected.empty())
        return state;
    const int last = static_cast<int>(connected.size()) - 1;
    float position = held(setup.parameters[0].f[0], 0.0f, 1.0f) * static_cast<float>(last);
    const float step = scalar::floorOf(position);
    float share = position - step;
    if (setup.parameters[1].i[0] != 0)
        share = share * share * (3.0f - 2.0f * share);
    const int first = static_cast<int>(step);
    state->from = connected[first];
    state->to = connected[std::min(first + 1, last)];
    state->share = share;
    return state;
}

const NodeDeclaration crossfadeNode{
    "crossfade",
    "Crossfade",
    "Combining",
    "Fades from one picture to the next as the position goes from 0, the first that is connected, to 1, the "
    "last.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input0", OperandChannels::Result, true, "Picture 0."},
     {"input1", OperandChannels::Result, false, "Picture 1."},
     {"input2", OperandChannels::Result, false, "Picture 2."},
     {"input3", OperandChannels::Result, false, "Picture 3."},
     {"input4", OperandChannels::Result, false, "Picture 4."},
     {"input5", OperandChannels::Result, false, "Picture 5."},
     {"input6", OperandChannels::Result, false, "Picture 6."},
     {"input7", OperandChannels::Result, false, "Picture 7."}},
    {{"position", ParameterType::Float, {0.5}, 0, 1, "Where between the first picture and the last."},
     {"smooth",
      ParameterType::Bool,
      {0},
      0,
      1,
      "Lingers at each picture: the position between two is eased by 3 t^2 - 2 t^3."}},
    prepareCrossfade,
    runcrossfadeRow};

} // namespace vellor::nodes
#endif
