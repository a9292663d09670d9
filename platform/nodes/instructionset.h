#pragma once

namespace vellor::nodes {

/// Instruction sets that kernels are compiled for, from low to high: the numbers of cpuengine.h.
enum class InstructionSet
{
    Best = 0, // that the machine has
    Ssse3 = 1,
    Avx2 = 2,
    Avx512 = 3
};

/// Holds kernels to an instruction set and those below it, from their next call on, in the whole process.
/// Best, and numbers that are none of the above, lift the limit. Nothing but the speed may follow from it.
/// Any thread.
void limitInstructionSet(InstructionSet highest);

} // namespace vellor::nodes
