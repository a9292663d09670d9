#include "platform/nodes/tests/noderunner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

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
        {20, 0.75f, 0.75f, 0.5f}, {21, 0.5f, 0.5f, 1.0f},   {21, 0.5f, 0.25f, 0.0f},
        {22, 0.25f, 0.5f, 0.25f}, {25, 0.25f, 0.5f, 0.5f},
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

namespace {

/// The functions of Compositing and Blending Level 1, as it writes them.
using Colour3 = std::array<double, 3>;

double lum(const Colour3& c)
{
    return 0.3 * c[0] + 0.59 * c[1] + 0.11 * c[2];
}

Colour3 setLum(Colour3 c, double l)
{
    const double d = l - lum(c);
    for (double& v : c)
        v += d;
    const double n = *std::min_element(c.begin(), c.end()), x = *std::max_element(c.begin(), c.end());
    for (double& v : c) {
        if (n < 0.0)
            v = l + (v - l) * l / (l - n);
        if (x > 1.0)
            v = l + (v - l) * (1.0 - l) / (x - l);
    }
    return c;
}

double sat(const Colour3& c)
{
    return *std::max_element(c.begin(), c.end()) - *std::min_element(c.begin(), c.end());
}

Colour3 setSat(Colour3 c, double s)
{
    const auto [low, high] = std::minmax_element(c.begin(), c.end());
    const auto mid = c.begin() + (3 - (low - c.begin()) - (high - c.begin()));
    *mid = (*mid - *low) * s / (*high - *low);
    *high = s;
    *low = 0.0;
    return c;
}

} // namespace

TEST(Blend, WholeColoursFollowTheirDefinition)
{
    const Picture source = noise(16, 16, 4, 3), background = noise(16, 16, 4, 4);
    for (int mode = 22; mode <= 25; ++mode) {
        const Picture result = Evaluation("blend", 16, 16)
                                   .set("mode", {double(mode)})
                                   .set("alpha", {3})
                                   .operand(source)
                                   .operand(background)();
        for (int i = 0; i < 256; ++i) {
            Colour3 s, b;
            for (int c = 0; c < 3; ++c) {
                s[c] = source.at(i % 16, i / 16, c);
                b[c] = background.at(i % 16, i / 16, c);
            }
            const Colour3 expected = mode == 22   ? setLum(setSat(s, sat(b)), lum(b))
                                     : mode == 23 ? setLum(setSat(b, sat(s)), lum(b))
                                     : mode == 24 ? setLum(s, lum(b))
                                                  : setLum(b, lum(s));
            for (int c = 0; c < 3; ++c)
                ASSERT_NEAR(result.at(i % 16, i / 16, c), expected[c], 2e-6) << mode << ' ' << i;
        }
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

TEST(Crossfade, GoesThroughWhatIsConnected)
{
    const auto run = [](double position) {
        return Evaluation("crossfade", 8, 8)
            .set("position", {position})
            .operand(grey(0.1f))
            .skip()
            .operand(grey(0.5f))
            .operand(grey(1.0f))()
            .at(5, 5);
    };
    EXPECT_EQ(run(0), 0.1f);
    EXPECT_NEAR(run(0.25), 0.3f, 1e-6f);
    EXPECT_NEAR(run(0.75), 0.75f, 1e-6f);
    EXPECT_EQ(run(7), 1.0f);
}

TEST(NormalBlend, TurnsSlopesAsTheFormulasSay)
{
    // A base that leans by 30 degrees along x and a detail that leans by 20: reoriented, they add up to 50
    // exactly.
    const double base = M_PI / 6, detail = M_PI / 9;
    const auto leaning = [](double angle, int axis) {
        const float side = float(0.5 + 0.5 * std::sin(angle)), up = float(0.5 + 0.5 * std::cos(angle));
        return colour(axis == 0 ? side : 0.5f, axis == 1 ? side : 0.5f, up, 0.5f);
    };
    const auto blended = [&](double method, const Picture& top) {
        return Evaluation("normalblend", 8, 8)
            .set("method", {method})
            .operand(leaning(base, 0))
            .operand(top)();
    };
    EXPECT_NEAR(blended(0, leaning(detail, 0)).at(0, 0, 0), 0.5 + 0.5 * std::sin(base + detail), 1e-6);
    // Across the base's lean, the detail stands on it: y is untouched.
    EXPECT_NEAR(blended(0, leaning(detail, 1)).at(0, 0, 1), 0.5 + 0.5 * std::sin(detail), 1e-6);
    // Slopes tan(base) and tan(detail) add up.
    EXPECT_NEAR(blended(2, leaning(detail, 0)).at(0, 0, 0),
                0.5 + 0.5 * std::sin(std::atan(std::tan(base) + std::tan(detail))), 1e-6);
    const double x = std::sin(base) + std::sin(detail), z = std::cos(base) * std::cos(detail);
    EXPECT_NEAR(blended(1, leaning(detail, 0)).at(0, 0, 0), 0.5 + 0.5 * x / std::hypot(x, z), 1e-6);
    // Turning green around in both turns it around in the result, and a flat detail changes nothing.
    for (int method = 0; method < 3; ++method) {
        EXPECT_NEAR(blended(method, leaning(-detail, 1)).at(0, 0, 1),
                    1.0 - blended(method, leaning(detail, 1)).at(0, 0, 1), 1e-6);
        EXPECT_NEAR(blended(method, leaning(0, 0)).at(0, 0, 0), 0.5 + 0.5 * std::sin(base), 1e-6);
        EXPECT_EQ(blended(method, leaning(0, 0)).at(0, 0, 3), 0.5f);
    }
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
