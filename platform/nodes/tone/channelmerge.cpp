#include "platform/nodes/kinds.h"

#include <algorithm>

namespace vellor::nodes {
namespace {

void channelmergeRow(const RowJob& job)
{
    for (int c = 0; c < kMaxChannels; ++c) {
        const float* row = job.operands[c * kMaxChannels];
        if (row)
            std::copy_n(row, job.count, job.result[c]);
        else
            std::fill_n(job.result[c], job.count, c == 3 ? 1.0f : 0.0f);
    }
}

} // namespace

const NodeDeclaration channelmergeNode{
    "channelmerge",
    "Channel Merge",
    "Tone",
    "Makes a colour picture of grey pictures for its channels.",
    ResultChannels::Colour,
    Chance::None,
    {{"red", OperandChannels::Grey, false, "Red; 0 when not connected."},
     {"green", OperandChannels::Grey, false, "Green; 0 when not connected."},
     {"blue", OperandChannels::Grey, false, "Blue; 0 when not connected."},
     {"alpha", OperandChannels::Grey, false, "Alpha; 1 when not connected."}},
    {},
    nullptr,
    channelmergeRow};

} // namespace vellor::nodes
