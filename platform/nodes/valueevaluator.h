#pragma once

#include "platform/program/program.h"

#include <cstdint>

namespace vellor::nodes {

/// Runs a checked value program that isn't per-pixel. `inputWords` holds four words for each input of the
/// package: word c of input i is inputWords[4 * i + c]. Fills the result's components; the words beyond its
/// type are 0.
///
/// Everything has a result: a quotient or remainder by 0 is 0, a float that fits no integer converts to 0,
/// integers wrap around. FMod has the sign of the divisor; IDiv truncates and IMod has the sign of the
/// dividend. FRound rounds halves to even. The functions are those of math-inl.h, so that every machine gives
/// the same bits. Any thread; allocates one block when the program has more than 256 registers, and may throw
/// std::bad_alloc then.
void evaluateValue(const program::ValueProgram& program, const std::uint32_t* inputWords,
                   program::Words& result);

} // namespace vellor::nodes
