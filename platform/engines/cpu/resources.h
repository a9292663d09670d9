#pragma once

#include "platform/nodes/instructionset.h"

#include <vellor/engine.h>

#include <cstdint>

namespace vellor::cpu {

/// What a handle may use, as this engine reads VellorHardResources. Of the bytes that the interface leaves to
/// the engine the first three 32-bit words are read; 0 in any of them is the engine's choice.
struct Resources
{
    std::uint64_t memoryBudget = std::uint64_t(4) << 30; // bytes for results; 0 in the record: this default
    std::uint32_t threads =
        0; // word 0: threads of a generation, the caller's among them; 0: one for each processor
    std::uint32_t chunkRows = 0; // word 1: rows that a thread takes at a time; 0: by measured time
    std::uint32_t flags = 0;     // word 2

    static constexpr std::uint32_t kNoFusion = 1; // every point node writes a whole picture
    // Bits 8 to 15 of the flags: the highest instruction set that kernels may use (nodes::InstructionSet); 0:
    // the best that the machine has. It counts for the process from the handle's next start on, and changes
    // no pixel.
    static constexpr int kInstructionSetShift = 8;
    static constexpr std::uint32_t kMaxThreads = 256;

    static Resources read(const VellorHardResources* record);
    int threadCount() const;
    nodes::InstructionSet instructionSet() const
    {
        return static_cast<nodes::InstructionSet>((flags >> kInstructionSetShift) & 0xff);
    }
};

} // namespace vellor::cpu
