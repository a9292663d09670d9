#pragma once

// Node kinds whose results a test can tell in its head, and that count how often they run.

#include "platform/nodes/node.h"

#include <atomic>
#include <cstdint>

namespace vellor::cpu::testing {

/// Pixels computed by kind since the last clear. Kernels run on many threads.
struct Counters
{
    std::atomic<long> ramp{0}, add{0}, sum{0}, spread{0};
    void clear() { ramp = add = sum = spread = 0; }
};
Counters& counters();

/// "ramp": x + 100 y + seed + amount in channel 0, the same plus 0.25 c in channel c. Point, no operand.
/// "add": operand + amount. Point. "sum": first + second. Point.
/// "spread": left + right + above + below, wrapping, in two passes. Area.
/// "fail": throws std::bad_alloc from prepare. "slow": 200 microseconds a row. Point.
/// "letter": the code of the first character of parameter "text". Point.
/// "photo": the picture of parameter "image" where the sizes agree, or -1. Point.
/// "program": the value of constant 0 of parameter "program" plus word 0 of the first input that it reads.
/// Point.
const nodes::NodeDeclaration* findFakeKind(std::uint32_t id);

} // namespace vellor::cpu::testing
