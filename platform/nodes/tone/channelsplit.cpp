#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/selectivestate.h"

#include <algorithm>

namespace vellor::nodes {
namespace {

struct ChannelsplitState : SelectiveState
{
    bool reads(int, int plane) const override { return plane == channel; }
    int handsOn(int) const override { return channel; }

    int channel = 0;
};

std::unique_ptr<State> prepareChannelsplit(const Setup& setup)
{
    auto state = std::make_unique<ChannelsplitState>();
    state->channel = held(setup.parameters[0].i[0], 0, 3);
    return state;
}

void channelsplitRow(const RowJob& job)
{
    const int channel = static_cast<const ChannelsplitState&>(*job.state).channel;
    std::copy_n(job.operands[channel], job.count, job.result[0]);
}

} // namespace

const NodeDeclaration channelsplitNode{
    "channelsplit",
    "Channel Split",
    "Tone",
    "Takes one channel of a colour picture.",
    ResultChannels::Grey,
    Chance::None,
    {{"input", OperandChannels::Colour, true, "The colour picture."}},
    {{"channel", ParameterType::Choice, {0}, 0, 3, "Which channel.", {"red", "green", "blue", "alpha"}}},
    prepareChannelsplit,
    channelsplitRow};

} // namespace vellor::nodes
