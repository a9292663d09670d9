#pragma once

#include "platform/engines/cpu/inputs.h"
#include "platform/engines/cpu/package.h"

#include <cstdint>
#include <vector>

namespace vellor::cpu {

/// Results of value programs: each is worked out when it is first asked for, and again when an input that it
/// reads has changed since.
class Values
{
public:
    explicit Values(const Package& package);

    const program::Words& get(int value, const Inputs& inputs);

private:
    struct Entry
    {
        program::Words words{};
        std::uint64_t serial = 0; // greatest serial of the inputs read; 0: never worked out
    };
    const Package& package_;
    std::vector<Entry> entries_;
};

} // namespace vellor::cpu
