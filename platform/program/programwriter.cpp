#include "platform/program/programwriter.h"

#include "platform/program/sections.h"

namespace vellor::program {

std::vector<std::uint8_t> writeProgram(const Program& program)
{
    return writeContainer(kBinary, {program});
}

} // namespace vellor::program
