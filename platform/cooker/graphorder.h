#pragma once

#include "platform/cooker/package.h"

#include <vector>

namespace vellor::cooker {

/// The nodes and instances of a graph, each behind those that its links refer to. Identifiers that are there
/// twice and links in a circle are told; a node of a circle still comes once.
std::vector<const NodeSource*> dependencyOrder(const GraphSource& graph, Diagnostics& diagnostics);

} // namespace vellor::cooker
