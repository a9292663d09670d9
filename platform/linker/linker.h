#pragma once

#include "platform/program/program.h"

#include <optional>
#include <string>
#include <vector>

namespace vellor::linker {

/// One program out of many: inputs and outputs keep their order, package after package; what no output needs
/// is left out, equal nodes, values and blobs are there once, and what is constant is worked out. Pictures
/// are limited to 2^sizeLimit pixels in width and height. The programs must be checked. nullopt with an error
/// when they don't go together.
std::optional<program::Program> link(const std::vector<program::Program>& programs, int sizeLimit,
                                     std::string& error);

} // namespace vellor::linker
