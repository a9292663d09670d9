#pragma once

#include "platform/program/program.h"

#include <vector>

namespace vellor::cooker {

/// For each input the indexes of the outputs that it can alter, ascending: through nodes, parameters, sizes
/// and seeds. program must be checked.
std::vector<std::vector<std::int32_t>> alteredOutputs(const program::Program& program);

} // namespace vellor::cooker
