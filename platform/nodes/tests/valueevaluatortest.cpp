#include "platform/nodes/valueevaluator.h"
#include "platform/nodes/form.h"
#include "platform/nodes/instructionset.h"
#include "platform/nodes/scalar.h"
#include "platform/nodes/tests/noderunner.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vellor::nodes {

using program::Op;
using program::ValueProgram;
using program::ValueType;
using scalar::bitsOf;
using scalar::floatOfBits;

namespace {

/// op on three constants.
ValueProgram programOf(Op op, std::uint32_t a, std::uint32_t b, std::uint32_t c)
{
    ValueProgram program;
    program.constants = {a, b, c};
    program.instructions = {
        {Op::Constant, 0, 0, 0, 0}, {Op::Constant, 1, 1, 0, 0}, {Op::Constant, 2, 2, 0, 0}, {op, 3, 0, 1, 2}};
    program.registerCount = 4;
    program.result = 3;
    return program;
}

std::uint32_t resultOf(Op op, std::uint32_t a, std::uint32_t b = 0, std::uint32_t c = 0)
{
    program::Words words;
    evaluateValue(programOf(op, a, b, c), nullptr, words);
    return words[0];
}

std::uint32_t u(int value)
{
    return static_cast<std::uint32_t>(value);
}

} // namespace

TEST(ValueEvaluator, Floats)
{
    struct Case
    {
        Op op;
        float a, b, c, expected;
    };
    const Case cases[] = {
        {Op::FAdd, 1.5f, 2.0f, 0, 3.5f},
        {Op::FDiv, 1.0f, 0.0f, 0, 0.0f},
        {Op::FDiv, 3.0f, 2.0f, 0, 1.5f},
        {Op::FMod, 5.5f, 2.0f, 0, 1.5f},
        {Op::FMod, -0.5f, 2.0f, 0, 1.5f},
        {Op::FPow, 2.0f, 5.0f, 0, 32.0f},
        {Op::FCeil, 1.25f, 0, 0, 2.0f},
        {Op::FRound, 2.5f, 0, 0, 2.0f},
        {Op::FFract, -0.25f, 0, 0, 0.75f},
        {Op::FSqrt, -4.0f, 0, 0, 0.0f},
        {Op::FSqrt, 9.0f, 0, 0, 3.0f},
        {Op::FClamp, 5.0f, 0.0f, 2.0f, 2.0f},
        {Op::FLerp, 2.0f, 4.0f, 0.25f, 2.5f},
        {Op::FStep, 0.5f, 0.5f, 0, 1.0f},
        {Op::FStep, 0.5f, 0.4f, 0, 0.0f},
        {Op::FSmoothstep, 0.0f, 2.0f, 1.0f, 0.5f},
        {Op::FSmoothstep, 1.0f, 1.0f, 1.0f, 1.0f},
    };
    for (const Case& row : cases)
        EXPECT_FLOAT_EQ(floatOfBits(resultOf(row.op, bitsOf(row.a), bitsOf(row.b), bitsOf(row.c))),
                        row.expected)
            << int(row.op) << ' ' << row.a << ' ' << row.b;
}

TEST(ValueEvaluator, Integers)
{
    const int lowest = -2147483647 - 1;
    struct Case
    {
        Op op;
        int a, b, c, expected;
    };
    const Case cases[] = {
        {Op::IAdd, 2147483647, 1, 0, lowest},
        {Op::IDiv, -7, 2, 0, -3},
        {Op::IDiv, 7, 0, 0, 0},
        {Op::IDiv, lowest, -1, 0, lowest},
        {Op::IMod, -7, 4, 0, -3},
        {Op::IMod, lowest, -1, 0, 0},
        {Op::IMin, -1, 1, 0, -1},
        {Op::IAbs, lowest, 0, 0, lowest},
        {Op::IShiftLeft, 1, 33, 0, 2},
        {Op::IShiftRight, -8, 1, 0, -4},
        {Op::ILess, -1, 0, 0, 1},
        {Op::INot, 0, 0, 0, 1},
        {Op::Select, 5, 10, 20, 10},
        {Op::Select, 0, 10, 20, 20},
    };
    for (const Case& row : cases)
        EXPECT_EQ(resultOf(row.op, u(row.a), u(row.b), u(row.c)), u(row.expected))
            << int(row.op) << ' ' << row.a;
    EXPECT_EQ(resultOf(Op::FToI, bitsOf(-2.9f)), u(-2));
    EXPECT_EQ(resultOf(Op::FToI, bitsOf(3e9f)), 0u);
    EXPECT_EQ(resultOf(Op::FToI, bitsOf(std::nanf(""))), 0u);
    EXPECT_EQ(floatOfBits(resultOf(Op::IToF, u(-3))), -3.0f);
}

TEST(ValueEvaluator, ReadsInputsAndFillsVectors)
{
    ValueProgram program;
    program.instructions = {{Op::Input, 0, 1, 2, 0}, {Op::Input, 1, 0, 0, 0}};
    program.registerCount = 2;
    program.type = ValueType::Int2;
    const std::uint32_t inputs[8] = {11, 12, 13, 14, 21, 22, 23, 24};
    program::Words words = {9, 9, 9, 9};
    evaluateValue(program, inputs, words);
    EXPECT_EQ(words, (program::Words{23, 11, 0, 0}));
}

TEST(PixelProgram, AgreesWithTheEvaluatorForEveryOperation)
{
    struct NoLimit
    {
        ~NoLimit() { limitInstructionSet(InstructionSet::Best); }
    } const noLimit;
    const float floats[][3] = {{0.3f, 0.7f, 0.5f},
                               {-2.25f, 3.0f, 0.25f},
                               {0.0f, 0.0f, 0.0f},
                               {17.5f, -4.0f, 2.0f},
                               {-0.3f, 0.2f, 1.0f}};
    const int integers[][3] = {{7, 3, 1}, {-9, 4, 0}, {0, 0, 5}, {1 << 30, 5, -2}, {-1, 1, 0}};
    for (int op = int(Op::Copy); op <= int(Op::Random); ++op) {
        const bool isInteger = (op >= int(Op::IAdd)) || op == int(Op::IToF);
        for (int i = 0; i < 5; ++i) {
            std::uint32_t words[3];
            for (int k = 0; k < 3; ++k)
                words[k] = isInteger ? u(integers[i][k]) : bitsOf(floats[i][k]);
            ValueProgram program = programOf(Op(op), words[0], words[1], words[2]);
            program::Words expected;
            evaluateValue(program, nullptr, expected);
            program.perPixel = true;
            for (const auto set : {InstructionSet::Ssse3, InstructionSet::Avx2, InstructionSet::Best}) {
                limitInstructionSet(set);
                const float got =
                    test::Evaluation("pixelprogram", 8, 8).setProgram("program", program)().at(3, 3);
                EXPECT_EQ(bitsOf(got), expected[0])
                    << "operation " << op << ", operands " << i << ", instruction set " << int(set);
            }
        }
    }
}

TEST(PixelProgram, SamplesOperandsAtPositions)
{
    ValueProgram program;
    program.instructions = {{Op::PixelX, 0, 0, 0, 0},
                            {Op::PixelY, 1, 0, 0, 0},
                            {Op::Constant, 2, 0, 0, 0},
                            {Op::FAdd, 3, 0, 2, 0},
                            {Op::SampleGrey, 4, 0, 3, 1}};
    program.constants = {bitsOf(0.25f)};
    program.registerCount = 5;
    program.result = 4;
    program.perPixel = true;
    const test::Picture source = test::noise(16, 16);
    const test::Picture result = test::Evaluation("pixelprogram", 16, 16)
                                     .setProgram("program", program)
                                     .operand(source)
                                     .skip()
                                     .skip()
                                     .skip()();
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            EXPECT_FLOAT_EQ(result.at(x, y), source.at(x + 4, y));
}

TEST(PixelProgram, ReadsItsOwnPixelAsAPointKernel)
{
    // 0.5 * colour of picture 0 + picture 1, a grey; picture 2 is not connected.
    ValueProgram program;
    program.instructions = {
        {Op::PixelX, 0, 0, 0, 0},     {Op::PixelY, 1, 0, 0, 0},     {Op::SampleColour, 2, 0, 0, 1},
        {Op::SampleGrey, 6, 1, 0, 1}, {Op::SampleGrey, 7, 2, 0, 1}, {Op::FAdd, 6, 6, 7, 0},
        {Op::Constant, 8, 0, 0, 0},   {Op::FMul, 9, 2, 8, 0},       {Op::FAdd, 9, 9, 6, 0}};
    program.constants = {bitsOf(0.5f)};
    program.registerCount = 10;
    program.result = 9;
    program.perPixel = true;
    const test::Picture colour = test::noise(300, 8, 4), grey = test::noise(300, 8, 1, 2);
    test::Evaluation run("pixelprogram", 300, 8);
    run.setProgram("program", program).operand(colour).operand(grey).skip().skip();
    ParameterValue parameter;
    parameter.program = &program;
    const NodeDeclaration& kind = *findNode("pixelprogram");
    EXPECT_TRUE(formFor(kind, &parameter).row);
    const test::Picture result = run();
    for (int x = 0; x < 300; ++x)
        EXPECT_EQ(result.at(x, 5), 0.5f * colour.at(x, 5) + grey.at(x, 5));
    // Across the other diagonal, it has to read elsewhere.
    program.instructions[2].b = 1;
    program.instructions[2].c = 0;
    EXPECT_FALSE(formFor(kind, &parameter).row);
}

} // namespace vellor::nodes
