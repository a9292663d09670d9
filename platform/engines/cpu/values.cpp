#include "platform/engines/cpu/values.h"

#include "platform/nodes/valueevaluator.h"

#include <algorithm>

namespace vellor::cpu {

Values::Values(const Package& package) : package_(package), entries_(package.program().values.size())
{
}

const program::Words& Values::get(int value, const Inputs& inputs)
{
    std::uint64_t serial = 1;
    for (const std::uint32_t input : package_.inputsOf(value))
        serial = std::max(serial, inputs.serial(input));
    Entry& entry = entries_[value];
    if (entry.serial != serial) {
        nodes::evaluateValue(package_.program().values[value], inputs.words().data(), entry.words);
        entry.serial = serial;
    }
    return entry.words;
}

} // namespace vellor::cpu
