#pragma once

#include "platform/program/program.h"

namespace vellor::program {

/// What an operation reads and writes.
struct OpInfo
{
    bool a = false, b = false, c = false; // which of the three are registers that are read
    int results = 1;                      // consecutive registers written from dst on
    bool perPixelOnly = false;
};

/// op must be below Op::Count.
OpInfo opInfo(Op op);

} // namespace vellor::program
