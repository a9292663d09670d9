#pragma once

#include "platform/nodes/node.h"

namespace vellor::cpu {

/// The kind of the plan's nodes that bring an operand to the size of the node that reads it. Each axis for
/// itself: larger by linear interpolation between pixel centres, smaller by the mean of the pixels that fall
/// together, equal as it is. Pictures wrap around.
const nodes::NodeDeclaration& resampleKind();

} // namespace vellor::cpu
