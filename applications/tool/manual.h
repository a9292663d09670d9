#pragma once

#include "applications/tool/options.h"

namespace vellor::tool {

/// The commands of the program, in the order in which help lists them.
const std::vector<const Command*>& allCommands();

/// The whole help of the program in a line for each command, of one command with its options, the manual page
/// as roff and the completion for bash: all from the declarations of the commands.
std::string overview();
std::string helpOf(const Command& command);
std::string manualPage();
std::string bashCompletion();

} // namespace vellor::tool
