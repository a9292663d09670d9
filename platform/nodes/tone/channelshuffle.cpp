#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/selectivestate.h"

#include <algorithm>

namespace vellor::nodes {
namespace {

// Which of the choices is what; those below kZero are channels of the first and of the second picture.
enum Pick
{
    kZero = 2 * kMaxChannels,
    kOne
};

struct ChannelshuffleState : SelectiveState
{
    bool reads(int operand, int channel) const override
    {
        return std::count(picks.begin(), picks.end(), operand * kMaxChannels + channel) > 0;
    }

    int handsOn(int channel) const override { return picks[channel] < kZero ? picks[channel] : -1; }

    std::array<int, kMaxChannels> picks{};
};

std::unique_ptr<State> prepareChannelshuffle(const Setup& setup)
{
    auto state = std::make_unique<ChannelshuffleState>();
    for (int c = 0; c < kMaxChannels; ++c)
        state->picks[c] = held(setup.parameters[c].i[0], 0, int(kOne));
    return state;
}

void channelshuffleRow(const RowJob& job)
{
    const auto& state = static_cast<const ChannelshuffleState&>(*job.state);
    for (int c = 0; c < kMaxChannels; ++c) {
        const int pick = state.picks[c];
        const float* from = pick < kZero ? job.operands[pick] : nullptr;
        if (from)
            std::copy_n(from, job.count, job.result[c]);
        else
            std::fill_n(job.result[c], job.count, pick == kOne ? 1.0f : 0.0f);
    }
}

ParameterDeclaration pickOf(const char* name, int channel, const char* text)
{
    return {name,
            ParameterType::Choice,
            {double(channel)},
            0,
            kOne,
            text,
            {"red0", "green0", "blue0", "alpha0", "red1", "green1", "blue1", "alpha1", "zero", "one"}};
}

} // namespace

const NodeDeclaration channelshuffleNode{
    "channelshuffle",
    "Channel Shuffle",
    "Tone",
    "Takes each channel from any channel of two pictures, or fills it.",
    ResultChannels::Colour,
    Chance::None,
    {{"input0", OperandChannels::Colour, true, "Picture 0."},
     {"input1", OperandChannels::Colour, false, "Picture 1; 0 everywhere when not connected."}},
    {pickOf("red", 0, "What red becomes."), pickOf("green", 1, "What green becomes."),
     pickOf("blue", 2, "What blue becomes."), pickOf("alpha", 3, "What alpha becomes.")},
    prepareChannelshuffle,
    channelshuffleRow};

} // namespace vellor::nodes
