#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/selectivestate.h"

#include <algorithm>

namespace vellor::nodes {
namespace {

struct SwitchState : SelectiveState
{
    bool reads(int operand, int) const override { return operand == index; }
    int handsOn(int channel) const override { return index * kMaxChannels + channel; }

    int index = 0;
};

std::unique_ptr<State> prepareSwitch(const Setup& setup)
{
    auto state = std::make_unique<SwitchState>();
    state->index = held(setup.parameters[0].i[0], 0, 7);
    while (state->index > 0 && setup.operands[state->index].channels == 0)
        --state->index;
    return state;
}

void switchRow(const RowJob& job)
{
    const int operand = static_cast<const SwitchState&>(*job.state).index;
    for (int c = 0; c < job.channels; ++c)
        std::copy_n(job.operands[operand * kMaxChannels + c], job.count, job.result[c]);
}

} // namespace

const NodeDeclaration switchNode{
    "switch",
    "Switch",
    "Combining",
    "Lets one of its pictures through. A number whose picture is not connected gives the next lower one that "
    "is.",
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
    {{"index", ParameterType::Int, {0}, 0, 7, "The number of the picture, from 0."}},
    prepareSwitch,
    switchRow};

} // namespace vellor::nodes
