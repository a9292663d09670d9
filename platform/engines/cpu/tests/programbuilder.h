#pragma once

#include "platform/program/program.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace vellor::cpu::testing {

inline std::uint32_t bitsOf(float value)
{
    std::uint32_t bits;
    std::memcpy(&bits, &value, 4);
    return bits;
}

/// Puts programs together in few words. Uids: inputs 100, 101, ...; outputs 200, 201, ...
class ProgramBuilder
{
public:
    program::Program program;

    int input(program::ValueType type, program::Words value = {})
    {
        program::Input input;
        input.uid = 100 + static_cast<std::uint32_t>(program.inputs.size());
        input.type = type;
        input.defaultValue = value;
        program.inputs.push_back(input);
        return static_cast<int>(program.inputs.size()) - 1;
    }

    /// A value program that gives the input as it is.
    int inputValue(int input)
    {
        const auto type = program.inputs[input].type;
        const int count = type == program::ValueType::Int2 || type == program::ValueType::Float2 ? 2 : 1;
        program::ValueProgram value;
        value.type = type;
        value.registerCount = static_cast<std::uint16_t>(count);
        for (int c = 0; c < count; ++c)
            value.instructions.push_back({program::Op::Input, static_cast<std::uint16_t>(c),
                                          static_cast<std::uint16_t>(input), static_cast<std::uint16_t>(c),
                                          0});
        return add(value);
    }

    int sizeValue(int log2Width, int log2Height)
    {
        program::ValueProgram value;
        value.type = program::ValueType::Int2;
        value.registerCount = 2;
        value.constants = {static_cast<std::uint32_t>(log2Width), static_cast<std::uint32_t>(log2Height)};
        value.instructions = {{program::Op::Constant, 0, 0, 0, 0}, {program::Op::Constant, 1, 1, 0, 0}};
        return add(value);
    }

    int add(program::ValueProgram value)
    {
        program.values.push_back(std::move(value));
        return static_cast<int>(program.values.size()) - 1;
    }

    /// `size`: a value program. Channels as the operand's, else 1.
    int node(const char* kind, int size, std::vector<std::int32_t> operands = {})
    {
        program::Node node;
        node.kind = program::stableId(kind);
        node.size = size;
        node.channels = operands.empty() ? 1 : program.nodes[operands[0]].channels;
        node.operands = std::move(operands);
        node.name = kind;
        program.nodes.push_back(node);
        return static_cast<int>(program.nodes.size()) - 1;
    }

    void constant(int node, const char* name, float value)
    {
        parameter(node, name, program::ParameterSource::Constant, {bitsOf(value)}, program::kNone);
    }

    void parameter(int node, const char* name, program::ParameterSource source, program::Words words,
                   int index)
    {
        program.nodes[node].parameters.push_back({program::stableId(name), source, words, index});
    }

    int output(int node, std::uint8_t format)
    {
        program::Output output;
        output.uid = 200 + static_cast<std::uint32_t>(program.outputs.size());
        output.node = node;
        output.pixelFormat = format;
        program.outputs.push_back(output);
        return static_cast<int>(program.outputs.size()) - 1;
    }

    int numericOutput(int value)
    {
        program::Output output;
        output.uid = 200 + static_cast<std::uint32_t>(program.outputs.size());
        output.type = program.values[value].type;
        output.value = value;
        program.outputs.push_back(output);
        return static_cast<int>(program.outputs.size()) - 1;
    }
};

} // namespace vellor::cpu::testing
