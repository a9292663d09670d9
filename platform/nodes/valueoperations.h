#pragma once

// What each numeric operation of a value program does to one word. The per-pixel evaluator has the same table
// for rows; a test runs both over the same operands.

#include "platform/program/program.h"

#include <cstdint>

namespace vellor::nodes {

/// The result of an operation on words a, b and c. Operations that read anything else give 0.
std::uint32_t applyOperation(program::Op op, std::uint32_t a, std::uint32_t b, std::uint32_t c);

/// Truncates; 0 for what fits no 32-bit integer.
std::uint32_t integerOf(float value);

} // namespace vellor::nodes
