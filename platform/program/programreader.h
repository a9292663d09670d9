#pragma once

#include "platform/program/bytes.h"
#include "platform/program/program.h"

#include <optional>
#include <string>

namespace vellor::program {

/// The checked program of a binary image (.vlrbin). Anything may be in the bytes: a file of another kind or
/// version, a damaged one, or one that breaks a rule of program.h gives nullopt and an error in words. Memory
/// stays in proportion to the size of the image. Any thread.
std::optional<Program> readProgram(ByteView image, std::string& error);

} // namespace vellor::program
