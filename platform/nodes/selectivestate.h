#pragma once

#include "platform/nodes/node.h"

namespace vellor::nodes {

/// State of a point kernel that doesn't look at all planes of its operands. What it says changes nothing but
/// the speed.
struct SelectiveState : State
{
    /// What it reads is fetched ahead of time.
    virtual bool reads(int operand, int channel) const = 0;
    /// The plane that a channel of the result is without any change, as operand * kMaxChannels + channel; -1
    /// where the kernel has something to write. A kernel that only hands on planes needn't run.
    virtual int handsOn(int channel) const
    {
        (void)channel;
        return -1;
    }
};

} // namespace vellor::nodes
