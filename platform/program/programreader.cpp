#include "platform/program/programreader.h"

#include "platform/program/programchecker.h"
#include "platform/program/sections.h"

#include <utility>

namespace vellor::program {

std::optional<Program> readProgram(ByteView image, std::string& error)
{
    std::optional<std::vector<Program>> programs = readContainer(kBinary, image, error);
    if (!programs || !checkProgram(programs->front(), error))
        return std::nullopt;
    return std::move(programs->front());
}

} // namespace vellor::program
