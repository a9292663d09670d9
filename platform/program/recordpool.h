#pragma once

#include "platform/program/program.h"

#include <map>
#include <string>

namespace vellor::program {

/// Adds records to a program, equal ones once.
class RecordPool
{
public:
    explicit RecordPool(Program& program) : m_program(program) {}

    /// The index of the record in program.values, program.blobs or program.nodes. A node that is there
    /// already keeps its first name.
    std::int32_t value(ValueProgram value);
    std::int32_t blob(std::vector<std::uint8_t> bytes);
    std::int32_t node(Node node);

private:
    Program& m_program;
    std::map<std::string, std::int32_t> m_values, m_blobs, m_nodes;
};

} // namespace vellor::program
