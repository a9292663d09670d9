#pragma once

#include "platform/cooker/flattener.h"

#include <string>

namespace vellor::cooker {

/// The XML description of cooked packages: names, widgets, groups, usages and presets of their graphs, and
/// the links from inputs to the outputs that they alter. Indexes count through all packages, as they do once
/// these are linked in order.
std::string writeDescription(const std::vector<FlatPackage>& packages);

} // namespace vellor::cooker
