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

TEST(Tone, FormulasInDoubles)
{
    const Picture in = noise(32, 32, 4);
    const auto held = [](double x) { return std::fmin(std::fmax(x, 0.0), 1.0); };
    const auto decoded = [](double x) {
        return x <= 0.04045 ? x / 12.92 : std::pow((x + 0.055) / 1.055, 2.4);
    };
    struct Case
    {
        Evaluation run;
        std::function<double(double)> formula;
    };
    const Case cases[] = {
        {Evaluation("gamma", 32, 32).set("gamma", {2.2}), [](double x) { return std::pow(x, 1.0 / 2.2); }},
        {Evaluation("srgbtolinear", 32, 32), decoded},
        {Evaluation("lineartosrgb", 32, 32),
         [](double x) { return x <= 0.0031308 ? 12.92 * x : 1.055 * std::pow(x, 1.0 / 2.4) - 0.055; }},
        {Evaluation("histogramscan", 32, 32), [](double x) { return x; }},
        {Evaluation("histogramscan", 32, 32).set("position", {0.25}).set("contrast", {0.5}),
         [&](double x) { return held((x - 0.625) / 0.5); }},
        {Evaluation("histogramselect", 32, 32).set("position", {0.4}).set("contrast", {0.2}),
         [&](double x) { return held((1.0 - std::fabs(x - 0.4) / 0.25) / 0.8); }},
        {Evaluation("histogramshift", 32, 32).set("shift", {-0.3}),
         [](double x) { return x - 0.3 - std::floor(x - 0.3); }},
    };
    for (const Case& row : cases) {
        const Picture out = Evaluation(row.run).operand(in)();
        for (int i = 0; i < 1024; ++i) {
            const int x = i % 32, y = i / 32;
            ASSERT_NEAR(out.at(x, y, 1), row.formula(in.at(x, y, 1)), 1e-6) << &row - cases << ' ' << i;
            ASSERT_EQ(out.at(x, y, 3), in.at(x, y, 3)) << &row - cases;
        }
    }
}

TEST(Tone, ColourFormulasInDoubles)
{
    const Picture in = noise(16, 16, 4);
    const Picture mixed = Evaluation("colourmatrix", 16, 16)
                              .set("green", {0.1, -0.2, 0.3, 0.4})
                              .set("offset", {0, 0.5, 0, 0})
                              .operand(in)();
    const Picture balanced = Evaluation("colourbalance", 16, 16)
                                 .set("shadows", {0.3, 0, 0})
                                 .set("highlights", {0, 0, -0.2})
                                 .operand(in)();
    const Picture light = Evaluation("greyconversion", 16, 16).set("method", {3}).operand(in)();
    for (int i = 0; i < 256; ++i) {
        const int x = i % 16, y = i / 16;
        const double r = in.at(x, y, 0), g = in.at(x, y, 1), b = in.at(x, y, 2), a = in.at(x, y, 3);
        EXPECT_NEAR(mixed.at(x, y, 1), 0.1 * r - 0.2 * g + 0.3 * b + 0.4 * a + 0.5, 1e-6);
        EXPECT_EQ(mixed.at(x, y, 2), in.at(x, y, 2));
        const double luminance = 0.2126 * r + 0.7152 * g + 0.0722 * b;
        const double red = 0.3 * (1 - luminance) * (1 - luminance), blue = -0.2 * luminance * luminance;
        EXPECT_NEAR(balanced.at(x, y, 0), r + red - (0.2126 * red + 0.0722 * blue), 1e-6);
        EXPECT_NEAR(light.at(x, y), 0.5 * (std::fmax(std::fmax(r, g), b) + std::fmin(std::fmin(r, g), b)),
                    1e-6);
    }
}

TEST(Tone, ColoursAreKeptApart)
{
    // Red, a darker red, green, and the grey that is as light as the red: Oklab (0.628, 0.225, 0.126) for
    // red.
    const double colours[4][3] = {{1, 0, 0}, {0.8, 0.05, 0}, {0, 1, 0}, {0.5446, 0.5446, 0.5446}};
    Picture in(4, 1, 4);
    for (int i = 0; i < 16; ++i)
        in.at(i / 4, 0, i % 4) = i % 4 == 3 ? 0.25f : float(colours[i / 4][i % 4]);
    const auto mask = [&](double tolerance, double softness, double metric) {
        return Evaluation("colourtomask", 4, 1)
            .set("tolerance", {tolerance})
            .set("softness", {softness})
            .set("metric", {metric})
            .operand(in)();
    };
    EXPECT_EQ(mask(0.15, 0, 0).at(0, 0), 1.0f);
    EXPECT_EQ(mask(0.15, 0, 0).at(1, 0), 1.0f);
    EXPECT_EQ(mask(0.15, 0, 0).at(2, 0), 0.0f);
    // sqrt(0.2249^2 + 0.1258^2) = 0.2577 from the grey.
    EXPECT_EQ(mask(0.256, 0, 0).at(3, 0), 0.0f);
    EXPECT_EQ(mask(0.259, 0, 0).at(3, 0), 1.0f);
    EXPECT_NEAR(mask(0, 2 * std::sqrt(0.2 * 0.2 + 0.05 * 0.05), 1).at(1, 0), 0.5f, 1e-5f);
    const Picture replaced =
        Evaluation("replacecolour", 4, 1).set("tolerance", {0.15}).set("softness", {0}).operand(in)();
    EXPECT_FLOAT_EQ(replaced.at(1, 0, 0), -0.2f);
    EXPECT_FLOAT_EQ(replaced.at(1, 0, 2), 1.0f);
    EXPECT_EQ(replaced.at(2, 0, 1), 1.0f);
}

TEST(AutoLevels, StretchesWhatIsThere)
{
    // 0.2 to 0.6 evenly in red, 0.3 to 0.5 in green and blue, and one pixel that is no number.
    Picture in(100, 50, 4);
    for (int i = 0; i < 20000; ++i) {
        const float x = (i / 4 % 5000 + 0.5f) / 5000;
        in.at(i / 4 % 100, i / 400, i % 4) = i % 4 == 0 ? 0.2f + 0.4f * x : i % 4 == 3 ? x : 0.3f + 0.2f * x;
    }
    const float low = in.at(0, 0), high = in.at(99, 49);
    in.at(50, 20) = std::nanf("");
    const Picture together = Evaluation("autolevels", 100, 50).operand(in)();
    EXPECT_NEAR(together.at(30, 30, 0), (in.at(30, 30, 0) - low) / (high - low), 1e-6f);
    EXPECT_NEAR(together.at(30, 30, 2), (in.at(30, 30, 2) - low) / (high - low), 1e-6f);
    EXPECT_EQ(together.at(30, 30, 3), in.at(30, 30, 3));
    Evaluation run("autolevels", 100, 50);
    run.set("channels", {1}).set("outlow", {0.1}).set("outhigh", {0.9}).operand(in);
    EXPECT_NEAR(run().at(0, 0, 1), 0.1f, 1e-6f);
    EXPECT_NEAR(run().at(99, 49, 1), 0.9f, 1e-6f);
    // With a tenth cut off below and a fifth above, 0.24 becomes 0 and 0.52 becomes 1.
    const Picture cut = Evaluation("autolevels", 100, 50)
                            .set("channels", {1})
                            .set("cliplow", {0.1})
                            .set("cliphigh", {0.2})
                            .operand(in)();
    EXPECT_NEAR(cut.at(30, 20, 0), (in.at(30, 20, 0) - 0.24f) / 0.28f, 2e-3f);
    EXPECT_EQ(cut.at(0, 4, 0), 0.0f);
    EXPECT_EQ(cut.at(0, 41, 0), 1.0f);
    EXPECT_EQ(
        Evaluation("autolevels", 8, 8).operand(drawn(8, 8, [](float, float) { return 0.4f; }))().at(3, 3),
        0.0f);
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

TEST(Tone, ChannelsHaveCurvesOfTheirOwn)
{
    const Picture in = noise(16, 16, 4);
    const Picture out = Evaluation("curve", 16, 16)
                            .setBlob("curve", {0, 1, 1, 0})
                            .setBlob("red", {0, 0.2f, 1, 0.6f})
                            .setBlob("alpha", {0, 0.5f, 1, 1})
                            .operand(in)();
    EXPECT_NEAR(out.at(7, 3, 0), 1.0f - (0.2f + 0.4f * in.at(7, 3, 0)), 1e-5f);
    EXPECT_NEAR(out.at(7, 3, 1), 1.0f - in.at(7, 3, 1), 1e-5f);
    EXPECT_NEAR(out.at(7, 3, 3), 0.5f + 0.5f * in.at(7, 3, 3), 1e-5f);
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
    const Picture shuffled = Evaluation("channelshuffle", 16, 16)
                                 .set("red", {2})
                                 .set("green", {4})
                                 .set("blue", {8})
                                 .set("alpha", {9})
                                 .operand(in)
                                 .operand(noise(16, 16, 4, 5))();
    EXPECT_EQ(shuffled.at(5, 6, 0), in.at(5, 6, 2));
    EXPECT_EQ(shuffled.at(5, 6, 1), noise(16, 16, 4, 5).at(5, 6, 0));
    EXPECT_EQ(shuffled.at(5, 6, 2), 0.0f);
    EXPECT_EQ(shuffled.at(5, 6, 3), 1.0f);
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
