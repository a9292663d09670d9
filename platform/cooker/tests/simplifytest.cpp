// What the builder folds away must not change a bit of what the evaluator gives.

#include "platform/nodes/valueevaluator.h"
#include "platform/program/opinfo.h"
#include "platform/program/types.h"
#include "platform/program/valuebuilder.h"

#include <gtest/gtest.h>

#include <random>

namespace vellor::program {

namespace {

/// A program of random operations over few constants and inputs, so that much of it can be folded; registers
/// are reused.
ValueProgram randomProgram(std::mt19937& random)
{
    const std::uint32_t odd[] = {0u,
                                 0x80000000u,
                                 1u,
                                 0x7FFFFFFFu,
                                 0xFFFFFFFFu,
                                 floatBits(0.5f),
                                 floatBits(-2.5f),
                                 floatBits(3e9f),
                                 0x7F800000u,
                                 0x7FC00000u,
                                 floatBits(1e-40f),
                                 31u};
    const auto below = [&](std::size_t n) { return static_cast<std::uint16_t>(random() % n); };
    ValueProgram program;
    program.registerCount = 12;
    program.type = ValueType::Int4;
    for (std::uint16_t i = 0; i < 12; ++i) {
        program.constants.push_back(odd[below(std::size(odd))]);
        if (i % 4 == 3)
            program.instructions.push_back({Op::Input, i, below(2), below(2), 0});
        else
            program.instructions.push_back({Op::Constant, i, i, 0, 0});
    }
    for (int i = 0; i < 40; ++i) {
        const Op op =
            static_cast<Op>(static_cast<int>(Op::Copy) + below(static_cast<std::size_t>(Op::Random) -
                                                               static_cast<std::size_t>(Op::Copy) + 1));
        program.instructions.push_back({op, below(12), below(12), below(12), below(12)});
    }
    program.result = below(9);
    return program;
}

TEST(ValueBuilder, KeepsEveryBit)
{
    std::mt19937 random(1);
    std::size_t before = 0, after = 0;
    for (int i = 0; i < 20000; ++i) {
        const ValueProgram program = randomProgram(random);
        const ValueProgram shorter = simplified(program);
        const std::uint32_t inputs[8] = {
            floatBits(0.75f), 5u, 0, 0, static_cast<std::uint32_t>(random()), 7u, 0, 0};
        Words expected{}, got{};
        nodes::evaluateValue(program, inputs, expected);
        nodes::evaluateValue(shorter, inputs, got);
        ASSERT_EQ(got, expected) << "program " << i;
        before += program.instructions.size();
        after += shorter.instructions.size();
    }
    EXPECT_LT(after, before / 2);
}

} // namespace

} // namespace vellor::program
