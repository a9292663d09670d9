#pragma once

// The declarations of all kinds, kindNode for each name in the kindlist.inc of its category's folder.

#include "platform/nodes/node.h"

namespace vellor::nodes {

#define VELLOR_KIND(kind) extern const NodeDeclaration kind##Node;
#include "platform/nodes/kindlist.inc"
#undef VELLOR_KIND

} // namespace vellor::nodes
