#pragma once

#include "platform/nodes/node.h"

namespace vellor::nodes {

/// State of a point kernel that doesn't look at all planes of its operands. What it reads is fetched ahead of
/// time; this changes nothing but the speed.
struct SelectiveState : State
{
    virtual bool reads(int operand, int channel) const = 0;
};

} // namespace vellor::nodes
