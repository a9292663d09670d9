#include "platform/nodes/tests/noderunner.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vellor::nodes::test {

namespace {

Picture ramp()
{
    return drawn(64, 4, [](float x, float) { return x; });
}

} // namespace

TEST(Levels, FollowTheFormula)
{
    const Picture in = ramp();
    const Picture out = Evaluation("levels", 64, 4)
                            .set("inlow", {0.2})
                            .set("inhigh", {0.8})
                            .set("gamma", {2.2})
                            .set("outlow", {0.9})
                            .set("outhigh", {0.1})
                            .operand(in)();
    for (int x = 0; x < 64; ++x) {
        const double t = std::fmin(std::fmax((in.at(x, 0) - 0.2) / 0.6, 0.0), 1.0);
        EXPECT_NEAR(out.at(x, 1), 0.9 - 0.8 * std::pow(t, 1.0 / 2.2), 2e-6) << x;
    }
    const Picture step = Evaluation("levels", 64, 4).set("inlow", {0.5}).set("inhigh", {0.5}).operand(in)();
    EXPECT_EQ(step.at(31, 0), 0.0f);
    EXPECT_EQ(step.at(32, 0), 1.0f);
}

TEST(Tone, SimpleFormulas)
{
    const Picture in = ramp();
    const auto at = [&](Evaluation run, int x) { return run.operand(in)().at(x, 2); };
    const float v = in.at(40, 0);
    EXPECT_FLOAT_EQ(at(Evaluation("invert", 64, 4), 40), 1.0f - v);
    EXPECT_NEAR(at(Evaluation("contrast", 64, 4).set("contrast", {0.5}).set("brightness", {0.1}), 40),
                (v - 0.5f) * 2.0f + 0.6f, 1e-6f);
    EXPECT_NEAR(at(Evaluation("histogramrange", 64, 4).set("range", {0.5}).set("position", {1}), 40),
                0.5f + 0.5f * v, 1e-6f);
    EXPECT_EQ(at(Evaluation("threshold", 64, 4).set("threshold", {0.6}), 40), 1.0f);
    EXPECT_EQ(at(Evaluation("threshold", 64, 4).set("threshold", {0.7}), 40), 0.0f);
    EXPECT_NEAR(at(Evaluation("posterise", 64, 4).set("steps", {3}), 40), 0.5f, 1e-6f);
    EXPECT_NEAR(at(Evaluation("posterise", 64, 4).set("steps", {3}), 60), 1.0f, 1e-6f);
}

TEST(Tone, CurveAndGradientMap)
{
    const Picture in = ramp();
    const Picture curve = Evaluation("curve", 64, 4).setBlob("curve", {0, 1, 1, 0}).operand(in)();
    const Picture map =
        Evaluation("gradientmap", 64, 4).setBlob("gradient", {0, 1, 0, 0, 1, 1, 0, 0, 1, 0}).operand(in)();
    for (int x = 0; x < 64; ++x) {
        EXPECT_NEAR(curve.at(x, 0), 1.0f - in.at(x, 0), 1e-5f);
        EXPECT_NEAR(map.at(x, 0, 0), 1.0f - in.at(x, 0), 1e-5f);
        EXPECT_NEAR(map.at(x, 0, 2), in.at(x, 0), 1e-5f);
        EXPECT_NEAR(map.at(x, 0, 3), 1.0f - in.at(x, 0), 1e-5f);
    }
}

TEST(Hsl, RoundTripAndKnownColours)
{
    const Picture in = noise(64, 64, 4);
    const Picture same = Evaluation("hsl", 64, 64).operand(in)();
    for (int c = 0; c < 4; ++c)
        for (int i = 0; i < 64; ++i)
            EXPECT_NEAR(same.at(i, 63 - i, c), in.at(i, 63 - i, c), 2e-6f);
    Picture red(8, 8, 4);
    for (int c = 0; c < 4; ++c)
        for (int i = 0; i < 64; ++i)
            red.at(i % 8, i / 8, c) = c == 0 || c == 3 ? 1.0f : 0.0f;
    const Picture green = Evaluation("hsl", 8, 8).set("hue", {1.0 / 3.0}).operand(red)();
    const Picture grey = Evaluation("hsl", 8, 8).set("saturation", {-1}).operand(red)();
    const Picture pink = Evaluation("hsl", 8, 8).set("lightness", {0.5}).operand(red)();
    const float expected[3][3] = {{0, 1, 0}, {0.5f, 0.5f, 0.5f}, {1, 0.5f, 0.5f}};
    const Picture* got[3] = {&green, &grey, &pink};
    for (int i = 0; i < 3; ++i)
        for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(got[i]->at(4, 4, c), expected[i][c], 1e-5f) << i << ' ' << c;
}

TEST(Channels, SplitMergeAndConvert)
{
    const Picture in = noise(16, 16, 4);
    const auto split = [&](double c) {
        return Evaluation("channelsplit", 16, 16).set("channel", {c}).operand(in)();
    };
    const Picture merged = Evaluation("channelmerge", 16, 16)
                               .operand(split(0))
                               .operand(split(1))
                               .operand(split(2))
                               .operand(split(3))();
    EXPECT_TRUE(merged == in);
    EXPECT_EQ(Evaluation("channelmerge", 16, 16).operand(split(0))().at(3, 3, 3), 1.0f);
    const Picture grey = Evaluation("greyconversion", 16, 16).set("weights", {1, 2, 3, 4}).operand(in)();
    EXPECT_NEAR(grey.at(5, 6), in.at(5, 6, 0) + 2 * in.at(5, 6, 1) + 3 * in.at(5, 6, 2) + 4 * in.at(5, 6, 3),
                1e-5f);
    const Picture colour = Evaluation("colourconversion", 16, 16).operand(split(0))();
    EXPECT_EQ(colour.at(5, 6, 2), in.at(5, 6, 0));
    EXPECT_EQ(colour.at(5, 6, 3), 1.0f);
}

TEST(ImageInput, CopiesReducesAndFallsBack)
{
    const Picture in = noise(32, 32);
    EXPECT_TRUE(Evaluation("imageinput", 32, 32).image(in)() == in);
    const Picture half = Evaluation("imageinput", 16, 16).image(in)();
    EXPECT_NEAR(half.at(3, 5), (in.at(6, 10) + in.at(7, 10) + in.at(6, 11) + in.at(7, 11)) / 4.0f, 1e-6f);
    EXPECT_EQ(Evaluation("imageinput", 16, 16).set("default", {0.25})().at(1, 1), 0.25f);
    EXPECT_EQ(Evaluation("imageinput", 32, 32, 4).image(in)().at(1, 1, 2), in.at(1, 1));
}

} // namespace vellor::nodes::test
