#pragma once

#include "platform/cooker/package.h"

namespace vellor::cooker {

/// Looks at what a graph says about itself: identifiers that are there twice, conditions for visibility,
/// presets.
void checkGraph(const GraphSource& graph, const Sources& sources, Diagnostics& diagnostics);

} // namespace vellor::cooker
