#include "platform/nodes/tests/noderunner.h"

#include <gtest/gtest.h>

#include <hwy/targets.h>

#include <algorithm>
#include <cmath>

namespace vellor::nodes::test {

namespace {

/// Makes the kernels use one instruction set, or the best one again for 0.
void force(std::int64_t target)
{
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

std::vector<std::int64_t> targets()
{
    std::vector<std::int64_t> result;
    for (const std::int64_t target : {HWY_SSSE3, HWY_AVX2, HWY_AVX3})
        if (hwy::SupportedTargets() & target)
            result.push_back(target);
    return result;
}

/// A run of a kind with every operand connected, and everything it can do in one of its choices.
Evaluation runOf(const NodeDeclaration& node, int choice)
{
    Evaluation run(node.name, 80, 48,
                   node.result == ResultChannels::Chosen && node.name != std::string("pixelprogram") ? 4 : 1);
    run.seed(11);
    for (const OperandDeclaration& operand : node.operands)
        run.operand(noise(80, 48, operand.channels == OperandChannels::Grey ? 1 : 4,
                          unsigned(run.operandCount() + 1)));
    for (const ParameterDeclaration& parameter : node.parameters) {
        if (parameter.type == ParameterType::Choice)
            run.set(parameter.name, {double(choice % int(parameter.choices.size()))});
        else if (parameter.type == ParameterType::Text)
            run.setText(parameter.name, U"Vellor 0123");
        else if (parameter.type == ParameterType::ImageInput)
            run.image(noise(33, 27, 4));
        else if (std::string(parameter.name).find("variation") != std::string::npos)
            run.set(parameter.name, {0.4});
    }
    return run;
}

int choicesOf(const NodeDeclaration& node)
{
    std::size_t most = 1;
    for (const ParameterDeclaration& parameter : node.parameters)
        most = std::max(most, parameter.choices.size());
    return static_cast<int>(most);
}

} // namespace

TEST(Determinism, SameBytesForEveryInstructionSetAndSplit)
{
    const std::vector<std::int64_t> all = targets();
    ASSERT_FALSE(all.empty());
    for (const NodeDeclaration* node : allNodes()) {
        for (int choice = 0; choice < choicesOf(*node); ++choice) {
            force(0);
            const Picture expected = runOf(*node, choice)();
            for (const std::int64_t target : all) {
                force(target);
                EXPECT_TRUE(runOf(*node, choice)() == expected)
                    << node->name << ", choice " << choice << ", " << hwy::TargetName(target);
                EXPECT_TRUE(runOf(*node, choice).split(23, 7)() == expected)
                    << node->name << ", choice " << choice << ", split, " << hwy::TargetName(target);
            }
        }
    }
    force(0);
}

TEST(Robustness, ExtremeParametersAreServed)
{
    for (const NodeDeclaration* node : allNodes()) {
        for (const double extreme : {-1e30, 0.0, 1e30, std::nan("")}) {
            Evaluation run = runOf(*node, 1);
            for (const ParameterDeclaration& parameter : node->parameters)
                if (parameter.type <= ParameterType::Float4)
                    run.set(parameter.name, {extreme, extreme, extreme, extreme});
            EXPECT_EQ(run().width(), 80) << node->name;
        }
        for (const double extreme : {-2147483648.0, 0.0, 2147483647.0}) {
            Evaluation run = runOf(*node, 1);
            for (const ParameterDeclaration& parameter : node->parameters)
                if (parameter.type >= ParameterType::Int && parameter.type <= ParameterType::Choice)
                    run.set(parameter.name, {extreme, extreme, extreme, extreme});
            EXPECT_EQ(run().width(), 80) << node->name;
        }
    }
}

} // namespace vellor::nodes::test
