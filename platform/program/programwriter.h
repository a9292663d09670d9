#pragma once

#include "platform/program/program.h"

#include <cstdint>
#include <vector>

namespace vellor::program {

/// The bytes of a binary image (.vlrbin): little-endian, versioned, check-summed. The same program gives the
/// same bytes.
std::vector<std::uint8_t> writeProgram(const Program& program);

} // namespace vellor::program
