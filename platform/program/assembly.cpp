#include "platform/program/assembly.h"

#include "platform/program/programchecker.h"
#include "platform/program/sections.h"

namespace vellor::program {

bool isAssembly(ByteView bytes)
{
    return hasMagic(bytes, kAssembly);
}

std::vector<std::uint8_t> writeAssembly(const std::vector<Program>& programs)
{
    return writeContainer(kAssembly, programs);
}

std::optional<std::vector<Program>> readAssembly(ByteView bytes, std::string& error)
{
    std::optional<std::vector<Program>> programs = readContainer(kAssembly, bytes, error);
    if (!programs)
        return std::nullopt;
    for (const Program& program : *programs) {
        if (!checkProgram(program, error))
            return std::nullopt;
    }
    return programs;
}

} // namespace vellor::program
