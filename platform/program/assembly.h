#pragma once

#include "platform/program/bytes.h"
#include "platform/program/program.h"

#include <optional>
#include <string>
#include <vector>

namespace vellor::program {

/// True when bytes begin as an assembly does.
bool isAssembly(ByteView bytes);

/// An assembly (.vlrasm) carries one program for each package that was cooked.
std::vector<std::uint8_t> writeAssembly(const std::vector<Program>& programs);

/// The checked programs of an assembly, at least one. Errors as readProgram has them.
std::optional<std::vector<Program>> readAssembly(ByteView bytes, std::string& error);

} // namespace vellor::program
