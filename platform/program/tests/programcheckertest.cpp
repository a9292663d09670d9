// One row for each rule: a change to a good program that breaks it, and the words that tell.

#include "platform/program/programchecker.h"
#include "platform/program/tests/sampleprogram.h"

#include <gtest/gtest.h>

namespace vellor::program {

namespace {

struct Row
{
    const char* error;
    void (*change)(Program&);
};

const Row rows[] = {
    {"input 0: unknown type", [](Program& p) { p.inputs[0].type = static_cast<ValueType>(7); }},
    {"input 1: its uid is taken", [](Program& p) { p.inputs[1].uid = p.inputs[0].uid; }},
    {"input 0: only a text has a default text", [](Program& p) { p.inputs[0].defaultText = U"a"; }},
    {"input 0: its default has too many components", [](Program& p) { p.inputs[0].defaultValue[2] = 1; }},
    {"input 1: its default text holds something that is no character",
     [](Program& p) { p.inputs[1].defaultText = {char32_t(0xD800)}; }},
    {"value program 0: its type is no number", [](Program& p) { p.values[0].type = ValueType::Image; }},
    {"value program 0: unknown operation", [](Program& p) { p.values[0].instructions[0].op = Op::Count; }},
    {"value program 0: no such input", [](Program& p) { p.values[0].instructions[0].a = 3; }},
    {"value program 0: no such component", [](Program& p) { p.values[0].instructions[0].b = 2; }},
    {"value program 0: no such component", [](Program& p) { p.values[0].instructions[0].a = 1; }},
    {"value program 0: no such constant", [](Program& p) { p.values[0].instructions[1].a = 1; }},
    {"value program 0: no such register", [](Program& p) { p.values[0].instructions[2].dst = 3; }},
    {"value program 0: a register is read before it is written",
     [](Program& p) { p.values[0].instructions[2].a = 2; }},
    {"value program 0: a register is read before it is written",
     [](Program& p) { p.values[0].result = 60000; }},
    {"value program 1: a register is read before it is written", [](Program& p) { p.values[1].result = 1; }},
    {"value program 2: an operation for pixels stands outside a pixel program",
     [](Program& p) { p.values[2].perPixel = false; }},
    {"node 0: a picture has 1 or 4 channels", [](Program& p) { p.nodes[0].channels = 3; }},
    {"node 1: an operand is no earlier node", [](Program& p) { p.nodes[1].operands[0] = 1; }},
    {"node 1: an operand is no earlier node", [](Program& p) { p.nodes[1].operands[0] = -2; }},
    {"node 0: its size is no program of type int2", [](Program& p) { p.nodes[0].size = 0; }},
    {"node 0: its size is no program of type int2", [](Program& p) { p.nodes[0].size = 3; }},
    {"node 0: its seed is no program of type int", [](Program& p) { p.nodes[0].seed = 2; }},
    {"node 0: a parameter is given twice", [](Program& p) { p.nodes[0].parameters[1].id = 1; }},
    {"node 0: a parameter has no such value program", [](Program& p) { p.nodes[0].parameters[0].index = 3; }},
    {"node 1: a parameter has no such blob", [](Program& p) { p.nodes[1].parameters[1].index = 2; }},
    {"node 1: a parameter is bound to an input that is neither image nor text",
     [](Program& p) { p.nodes[1].parameters[2].index = 0; }},
    {"node 1: its pixel program samples an operand that is not connected",
     [](Program& p) { p.nodes[1].operands[0] = kNone; }},
    {"node 1: its pixel program samples an operand with the wrong channels",
     [](Program& p) { p.nodes[0].channels = 4; }},
    {"output 1: its uid is taken", [](Program& p) { p.outputs[1].uid = p.outputs[0].uid; }},
    {"output 0: it has no such node", [](Program& p) { p.outputs[0].node = 2; }},
    {"output 0: its pixel format is not a raw one", [](Program& p) { p.outputs[0].pixelFormat = 1; }},
    {"output 0: its number of mipmaps is out of range", [](Program& p) { p.outputs[0].mipmaps = 0; }},
    {"output 0: only one side of its size is fixed", [](Program& p) { p.outputs[0].fixedWidth = 256; }},
    {"output 0: its size is no power of two in range",
     [](Program& p) { p.outputs[0].fixedWidth = p.outputs[0].fixedHeight = 32768; }},
    {"output 1: its type is neither image nor number",
     [](Program& p) { p.outputs[1].type = ValueType::String; }},
    {"output 1: its value program has another type", [](Program& p) { p.outputs[1].value = 1; }},
};

} // namespace

TEST(ProgramChecker, KeepsGoodPrograms)
{
    std::string error;
    EXPECT_TRUE(checkProgram(sampleProgram(), error)) << error;
    EXPECT_TRUE(checkProgram({}, error)) << error;
}

TEST(ProgramChecker, NamesTheBrokenRule)
{
    for (const Row& row : rows) {
        Program program = sampleProgram();
        row.change(program);
        std::string error;
        EXPECT_FALSE(checkProgram(program, error)) << row.error;
        EXPECT_EQ(error, row.error);
    }
}

} // namespace vellor::program
