#pragma once

#include "platform/program/program.h"

#include <cstdint>

namespace vellor::program {

/// The result of an integer operation (Op::IAdd to Op::Select) on the words a, b and c; other operations give
/// 0. The one place where their meaning stands: constants are folded by it, and values evaluated. Any thread.
std::uint32_t applyInteger(Op op, std::uint32_t a, std::uint32_t b, std::uint32_t c);

} // namespace vellor::program
