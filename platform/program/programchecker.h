#pragma once

#include "platform/program/program.h"

#include <string>

namespace vellor::program {

/// True when program keeps every rule of program.h; otherwise error names the place and the rule. An engine
/// may run a checked program without looking again: indexes are in range, operands are earlier nodes,
/// registers are written before they are read, and types fit. What the node kinds ask for is not looked at.
/// Any thread.
bool checkProgram(const Program& program, std::string& error);

} // namespace vellor::program
