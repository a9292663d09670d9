#include "platform/nodes/tests/noderunner.h"

#include <gtest/gtest.h>

namespace vellor::nodes::test {

namespace {

Picture grey(float value)
{
    return drawn(8, 8, [=](float, float) { return value; });
}

Picture colour(float r, float g, float b, float a)
{
    Picture picture(8, 8, 4);
    const float values[4] = {r, g, b, a};
    for (int c = 0; c < 4; ++c)
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x)
                picture.at(x, y, c) = values[c];
    return picture;
}

} // namespace

TEST(Blend, ModesByTable)
{
    struct Case
    {
        int mode;
        float background, source, expected;
    };
    const Case cases[] = {
        {0, 0.25f, 0.75f, 0.75f}, {1, 0.5f, 0.75f, 1.25f},  {2, 0.5f, 0.75f, -0.25f},
        {3, 0.5f, 0.5f, 0.25f},   {4, 0.25f, 0.5f, 0.5f},   {4, 0.5f, 0.0f, 1.0f},
        {4, 0.0f, 0.0f, 0.0f},    {5, 0.5f, 0.5f, 0.75f},   {6, 0.25f, 0.5f, 0.25f},
        {6, 0.75f, 0.5f, 0.75f},  {7, 0.25f, 0.5f, 0.25f},  {7, 0.25f, 0.0f, 0.0625f},
        {7, 0.64f, 1.0f, 0.8f},   {8, 0.5f, 0.25f, 0.25f},  {8, 0.5f, 0.75f, 0.75f},
        {9, 0.5f, 0.75f, 1.0f},   {10, 0.5f, 0.75f, 1.0f},  {10, 0.5f, 0.25f, 0.0f},
        {11, 0.5f, 0.1f, 0.2f},   {11, 0.5f, 0.9f, 0.8f},   {12, 0.25f, 0.5f, 0.25f},
        {13, 0.25f, 0.5f, 0.5f},  {14, 0.25f, 0.75f, 0.5f}, {15, 0.5f, 0.25f, 0.5f},
        {16, 0.25f, 0.5f, 0.5f},  {16, 0.5f, 1.0f, 1.0f},   {17, 0.75f, 0.5f, 0.5f},
        {17, 1.0f, 0.0f, 1.0f},   {18, 0.75f, 0.5f, 0.25f}, {19, 0.25f, 0.75f, 0.5f},
        {20, 0.75f, 0.75f, 0.5f},
    };
    for (const Case& row : cases) {
        const Picture result = Evaluation("blend", 8, 8)
                                   .set("mode", {double(row.mode)})
                                   .operand(grey(row.source))
                                   .operand(grey(row.background))();
        EXPECT_NEAR(result.at(3, 3), row.expected, 1e-6f)
            << "mode " << row.mode << ": " << row.background << ", " << row.source;
    }
}

TEST(Blend, OpacityMaskAndClamp)
{
    Evaluation run("blend", 8, 8);
    run.set("mode", {1}).set("opacity", {0.5}).operand(grey(0.8f)).operand(grey(0.6f)).operand(grey(0.5f));
    EXPECT_NEAR(run().at(0, 0), 0.6f + 0.25f * 0.8f, 1e-6f);
    EXPECT_EQ(run.set("opacity", {4}).set("clamp", {1})().at(0, 0), 1.0f);
}

TEST(Blend, AlphaRules)
{
    struct Case
    {
        int rule;
        float red, alpha;
    };
    // Source red 1, alpha 0.5, over background red 0.2, alpha 0.6. Over: alpha = 0.5 + 0.6 * 0.5, red = (0.5
    // + 0.3 * 0.2) / 0.8.
    const Case cases[] = {{0, 0.7f, 0.8f}, {1, 0.6f, 0.6f}, {2, 1.0f, 0.5f}, {3, 1.0f, 0.6f}};
    for (const Case& row : cases) {
        const Picture result = Evaluation("blend", 8, 8)
                                   .set("alpha", {double(row.rule)})
                                   .operand(colour(1.0f, 0, 0, 0.5f))
                                   .operand(colour(0.2f, 0, 0, 0.6f))();
        EXPECT_NEAR(result.at(2, 2, 0), row.red, 1e-6f) << row.rule;
        EXPECT_NEAR(result.at(2, 2, 3), row.alpha, 1e-6f) << row.rule;
    }
}

TEST(Blend, MissingPictures)
{
    EXPECT_EQ(Evaluation("blend", 8, 8).skip().operand(grey(0.4f))().at(0, 0), 0.0f);
    EXPECT_EQ(Evaluation("blend", 8, 8).operand(grey(0.4f))().at(0, 0), 0.4f);
    const Picture under = Evaluation("blend", 8, 8).skip().operand(colour(0.1f, 0.2f, 0.3f, 0.4f))();
    EXPECT_NEAR(under.at(0, 0, 1), 0.2f, 1e-6f);
    EXPECT_NEAR(under.at(0, 0, 3), 0.4f, 1e-6f);
}

TEST(HeightBlend, TheHigherShows)
{
    Evaluation run("heightblend", 8, 8);
    run.operand(grey(0.8f)).operand(grey(0.3f));
    EXPECT_NEAR(run().at(0, 0), 0.8f, 1e-6f);
    EXPECT_NEAR(run.set("output", {1})().at(0, 0), 1.0f, 1e-6f);
    EXPECT_NEAR(run.set("offset", {-0.5})().at(0, 0), 0.5f, 1e-5f);
    EXPECT_NEAR(run.set("offset", {-0.7})().at(0, 0), 0.0f, 1e-6f);
}

TEST(Switch, ChoosesAndFallsBack)
{
    const auto run = [](double index) {
        return Evaluation("switch", 8, 8)
            .set("index", {index})
            .operand(grey(0.1f))
            .skip()
            .operand(grey(0.3f))()
            .at(5, 5);
    };
    EXPECT_EQ(run(0), 0.1f);
    EXPECT_EQ(run(1), 0.1f);
    EXPECT_EQ(run(2), 0.3f);
    EXPECT_EQ(run(99), 0.3f);
}

} // namespace vellor::nodes::test
