#pragma once

#include "platform/nodes/instructionset.h"

#include <vellor/cpuengine.h>
#include <vellor/engine.h>

#include <cstdint>

namespace vellor::cpu {

/// What a handle may use, as this engine reads VellorHardResources; the words are those of cpuengine.h.
struct Resources
{
    std::uint64_t memoryBudget = std::uint64_t(4) << 30; // bytes for results; 0 in the record: this default
    std::uint32_t threads = 0, chunkRows = 0, flags = 0;

    static constexpr std::uint32_t kMaxThreads = 256;

    static Resources read(const VellorHardResources* record);
    int threadCount() const;
    nodes::InstructionSet instructionSet() const
    {
        return static_cast<nodes::InstructionSet>((flags >> VELLOR_CPU_INSTRUCTION_SET_SHIFT) & 0xff);
    }
};

} // namespace vellor::cpu
