#include "platform/nodes/tests/noderunner.h"

#include <gtest/gtest.h>

#include <hwy/targets.h>

#include <algorithm>
#include <cmath>
#include <random>

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

/// The run gives the same bytes whatever it is computed with.
void expectSame(Evaluation run, const std::string& what)
{
    static const std::vector<std::int64_t> all = targets();
    const Picture expected = run();
    for (const std::int64_t target : all) {
        force(target);
        EXPECT_TRUE(run.split(1 << 20, 1 << 20)() == expected) << what << ", " << hwy::TargetName(target);
        EXPECT_TRUE(run.split(23, 7)() == expected) << what << ", split, " << hwy::TargetName(target);
        EXPECT_TRUE(run.pastCaches(true)() == expected)
            << what << ", past caches, " << hwy::TargetName(target);
        run.pastCaches(false);
    }
    force(0);
}

/// Numbers within their ranges, most of them nearer to the default than to the ends.
void setByChance(Evaluation& run, const NodeDeclaration& node, unsigned draw)
{
    std::minstd_rand chance(draw + 1);
    std::uniform_real_distribution<double> spread(0.0, 1.0);
    for (const ParameterDeclaration& parameter : node.parameters) {
        if (parameter.type > ParameterType::Int4)
            continue;
        double values[4];
        for (int c = 0; c < 4; ++c) {
            const double usual = parameter.defaultValue[std::size_t(c)];
            const double share = std::pow(spread(chance), 3.0);
            const double end = spread(chance) < 0.5 ? parameter.minimum : parameter.maximum;
            values[c] = usual + (end - usual) * share;
        }
        run.set(parameter.name, {values[0], values[1], values[2], values[3]});
    }
}

} // namespace

TEST(Determinism, SameBytesForEveryInstructionSetAndSplit)
{
    ASSERT_FALSE(targets().empty());
    for (const NodeDeclaration* node : allNodes())
        for (int choice = 0; choice < choicesOf(*node); ++choice)
            expectSame(runOf(*node, choice), node->name + std::string(", choice ") + std::to_string(choice));
}

TEST(Determinism, SameBytesForParametersByChance)
{
    for (const NodeDeclaration* node : allNodes()) {
        for (int draw = 0; draw < 4; ++draw) {
            Evaluation run = runOf(*node, draw);
            setByChance(run, *node, unsigned(draw));
            expectSame(run, node->name + std::string(", draw ") + std::to_string(draw));
        }
    }
}

TEST(Determinism, ThinStampsEndAtTheSamePixels)
{
    const double sizes[][2] = {{0.09, 0.0014}, {0.3, 0.003}, {0.0004, 0.7}, {1.5, 0.06}};
    for (const char* kind : {"scatter", "freescatter"}) {
        for (int shape = 0; shape < 10; ++shape) {
            for (int output = 0; output < 5; ++output) {
                const double* size = sizes[(shape + output) % 4];
                Evaluation run(kind, 200, 72, 1 + 3 * (shape % 2));
                run.set("shape", {double(shape)}).set("output", {double(output)}).set("ratio", {1});
                run.set("softness", {output % 2 ? 0.3 : 1.0}).set("size", {size[0], size[1]});
                run.set("sizevariation", {0.8}).set("rotationvariation", {1}).set("valuevariation", {0.9});
                run.set("blend", {double((shape + output) % 3)});
                expectSame(run, std::string(kind) + ", shape " + std::to_string(shape) + ", output " +
                                    std::to_string(output));
            }
        }
    }
}

TEST(Determinism, MediansOfEveryRadius)
{
    Picture ties = noise(300, 80);
    for (int y = 0; y < 80; ++y)
        for (int x = 0; x < 300; ++x)
            ties.at(x, y) = ties.at(x, y) < 0.3f ? -0.0f : std::floor(ties.at(x, y) * 4.0f) - 1.0f;
    for (int radius = 1; radius <= 16; ++radius)
        for (const Picture& picture : {noise(300, 80), ties})
            expectSame(Evaluation("median", 300, 80).set("radius", {double(radius)}).operand(picture),
                       "median, radius " + std::to_string(radius));
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
