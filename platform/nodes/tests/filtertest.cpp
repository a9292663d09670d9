#include "platform/nodes/tests/noderunner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

// Filters of neighbourhoods against plain definitions.

namespace vellor::nodes::test {

namespace {

double worstDifference(const Picture& a, const Picture& b)
{
    double worst = 0.0;
    for (int c = 0; c < std::min(a.channels(), b.channels()); ++c)
        for (int y = 0; y < a.height(); ++y)
            for (int x = 0; x < a.width(); ++x)
                worst = std::max(worst, double(std::fabs(a.at(x, y, c) - b.at(x, y, c))));
    return worst;
}

/// A picture of the values that a function of place and channel gives.
template<class Value> Picture made(int width, int height, int channels, Value&& value)
{
    Picture picture(width, height, channels);
    for (int c = 0; c < channels; ++c)
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                picture.at(x, y, c) = static_cast<float>(value(x, y, c));
    return picture;
}

/// Noise, ties among zeros of either sign and infinities, values that differ in their last bits, and none
/// that differ at all.
std::vector<Picture> picturesWithOrder(int width, int height)
{
    const Picture random = noise(width, height, 4);
    const float few[] = {-INFINITY, -1.0f, -0.0f, 0.0f, 0.0f, 0.25f, INFINITY};
    return {random,
            made(width, height, 1, [&](int x, int y, int) { return few[int(random.at(x, y) * 6.99f)]; }),
            made(width, height, 1, [&](int x, int y, int) { return 0.5f + random.at(x, y) / 5000.0f; }),
            made(width, height, 1, [](int, int, int) { return 0.7f; })};
}

Picture gaussian(const Picture& in, double thousandths)
{
    return Evaluation("gaussianblur", in.width(), in.height(), in.channels())
        .set("sigma", {thousandths})
        .operand(in)();
}

} // namespace

TEST(Median, IsTheMiddleOfTheSortedWindow)
{
    const std::pair<int, int> sizes[] = {{520, 70}, {1030, 5}, {29, 33}, {9, 1}, {1, 3}};
    for (const auto& [width, height] : sizes) {
        for (const Picture& in : picturesWithOrder(width, height)) {
            for (int radius = 0; radius <= 16; ++radius) {
                const Picture out = Evaluation("median", width, height, in.channels())
                                        .set("radius", {double(radius)})
                                        .operand(in)();
                for (int i = 0; i<width * height; i += width> 100 ? 271 : 1) {
                    const int x = i % width, y = i / width, c = i % in.channels();
                    std::vector<float> window;
                    for (int dy = -radius; dy <= radius; ++dy)
                        for (int dx = -radius; dx <= radius; ++dx)
                            window.push_back(in.at(x + dx, y + dy, c));
                    const auto middle = window.begin() + std::ptrdiff_t(window.size() / 2);
                    std::nth_element(window.begin(), middle, window.end());
                    ASSERT_EQ(out.at(x, y, c), *middle) << radius << ": " << x << ' ' << y;
                }
            }
        }
    }
}

TEST(Morphology, IsTheExtremeUnderTheShape)
{
    const Picture in = noise(90, 50);
    for (const int radius : {0, 1, 2, 5, 12, 20}) {
        for (const int square : {0, 1}) {
            const auto run = [&](const char* kind, int rows) {
                return Evaluation(kind, 90, 50)
                    .set("radius", {radius * 1000.0 / 90})
                    .set("shape", {double(square)})
                    .split(1000, rows)
                    .operand(in)();
            };
            const Picture most = run("dilate", 1000), least = run("erode", 9);
            for (int i = 0; i < 90 * 50; i += 7) {
                const int x = i % 90, y = i / 90;
                float high = -1.0f, low = 2.0f;
                for (int dy = -radius; dy <= radius; ++dy)
                    for (int dx = -radius; dx <= radius; ++dx)
                        if (square || std::hypot(dx, dy) <= radius + 0.4) {
                            high = std::max(high, in.at(x + dx, y + dy));
                            low = std::min(low, in.at(x + dx, y + dy));
                        }
                ASSERT_EQ(most.at(x, y), high) << radius << (square ? " square" : " disc");
                ASSERT_EQ(least.at(x, y), low) << radius << (square ? " square" : " disc");
            }
        }
    }
}

TEST(Detail, IsTheDifferenceToTheBlur)
{
    const Picture in = noise(64, 64, 4), mean = gaussian(in, 50);
    const Picture sharp = Evaluation("sharpen").set("radius", {50}).set("amount", {1.5}).operand(in)();
    const Picture high = Evaluation("highpass").set("radius", {50}).set("contrast", {2}).operand(in)();
    const auto expected = [&](double base, double own, double factor) {
        return made(64, 64, 4, [&](int x, int y, int c) {
            const double detail = in.at(x, y, c) - mean.at(x, y, c);
            return c == 3 ? in.at(x, y, c) : base + own * in.at(x, y, c) + factor * detail;
        });
    };
    EXPECT_LT(worstDifference(sharp, expected(0, 1, 1.5)), 1e-6);
    EXPECT_LT(worstDifference(high, expected(0.5, 0, 2)), 1e-6);
}

TEST(Edges, AStepIsOneAndASineItsSlope)
{
    const Picture step = drawn(64, 64, [](float x, float) { return x < 0.5f ? 0.0f : 1.0f; });
    for (const double width : {0.0, 60.0, 100.0})
        EXPECT_NEAR(Evaluation("edges").set("width", {width}).operand(step)().at(32, 20), 1.0, 0.03) << width;
    EXPECT_EQ(Evaluation("edges").set("width", {0}).operand(step)().at(16, 20), 0.0f);
    const Picture turned = drawn(64, 64, [](float, float y) { return y < 0.5f ? 0.0f : 1.0f; });
    EXPECT_NEAR(Evaluation("edges").operand(turned)().at(9, 32),
                Evaluation("edges").operand(step)().at(32, 9), 1e-6);
}

TEST(Emboss, ASlopeTowardsTheLightIsLight)
{
    // Rises to the right by 1 over the width: lit from the left by 20 hundredths.
    const Picture plane = drawn(64, 64, [](float x, float) { return x; }), in = noise(64, 64);
    const auto run = [&](double angle, int base) {
        return Evaluation("emboss")
            .set("intensity", {20})
            .set("angle", {angle})
            .set("base", {double(base)})
            .operand(in)
            .operand(plane)();
    };
    EXPECT_NEAR(run(0.5, 1).at(30, 30), 0.7, 1e-5);
    EXPECT_NEAR(run(0.0, 1).at(30, 30), 0.3, 1e-5);
    EXPECT_NEAR(run(0.25, 0).at(30, 30), in.at(30, 30), 1e-5);
}

TEST(Smooth, IsTheGuidedFilter)
{
    const Picture in = noise(64, 64);
    const double contrast = 0.3;
    const Picture out = Evaluation("smooth").set("radius", {60}).set("contrast", {contrast}).operand(in)();
    const Picture mean = gaussian(in, 60);
    const Picture squares =
        gaussian(made(64, 64, 1, [&](int x, int y, int) { return in.at(x, y) * in.at(x, y); }), 60);
    const auto weight = [&](int x, int y) {
        const double variance = squares.at(x, y) - double(mean.at(x, y)) * mean.at(x, y);
        return variance / (variance + contrast * contrast);
    };
    const Picture a = gaussian(made(64, 64, 1, [&](int x, int y, int) { return weight(x, y); }), 60);
    const Picture b =
        gaussian(made(64, 64, 1, [&](int x, int y, int) { return (1 - weight(x, y)) * mean.at(x, y); }), 60);
    EXPECT_LT(
        worstDifference(
            out, made(64, 64, 1, [&](int x, int y, int) { return a.at(x, y) * in.at(x, y) + b.at(x, y); })),
        1e-5);
}

TEST(NonUniformBlur, EvenMapsGiveGaussians)
{
    const Picture in = noise(128, 128, 4);
    for (const double share : {0.0, 1.0 / (1.6 * 1.6 * 1.6), 1.0 / 1.6, 1.0, 3.0}) {
        const Picture map = drawn(128, 128, [&](float, float) { return float(share); });
        const Picture out =
            Evaluation("nonuniformblur", 128, 128).set("sigma", {100}).operand(in).operand(map)();
        EXPECT_LT(worstDifference(out, gaussian(in, 100 * std::min(share, 1.0))), 1e-4) << share;
    }
}

TEST(NonUniformBlur, OvalsAreGaussiansOfTwoWidths)
{
    Picture point = drawn(128, 128, [](float, float) { return 0.0f; });
    point.at(64, 64) = 1000.0f;
    const Picture white = drawn(128, 128, [](float, float) { return 1.0f; });
    const Picture turn = drawn(128, 128, [](float, float) { return 1.0f / 12; });
    for (const double ratio : {1.5, 4.0}) {
        const Picture out = Evaluation("nonuniformblur", 128, 128)
                                .set("sigma", {100})
                                .set("ratio", {ratio})
                                .set("angle", {0.25})
                                .operand(point)
                                .operand(white)
                                .operand(turn)
                                .split(7, 5)();
        constexpr double kTurn = 6.283185307179586;
        const double along = 12.8, across = along / ratio, angle = kTurn * (0.25 + 1.0 / 12);
        const double top = 1000 / (kTurn * along * across);
        for (int y = 20; y < 108; ++y)
            for (int x = 20; x < 108; ++x) {
                const double dx = x - 64, dy = y - 64;
                const double a = (dx * std::cos(angle) + dy * std::sin(angle)) / along;
                const double b = (dy * std::cos(angle) - dx * std::sin(angle)) / across;
                EXPECT_NEAR(out.at(x, y), top * std::exp(-0.5 * (a * a + b * b)), 0.025 * top)
                    << x << ' ' << y;
            }
    }
}

TEST(SlopeBlur, WalksDownhill)
{
    // A slope of 1 to the right, away from its edge: 8 places a pixel apart, to the left.
    const Picture plane = drawn(64, 64, [](float x, float) { return x; }), in = noise(64, 64);
    for (const int mode : {0, 1, 2}) {
        const Picture out = Evaluation("slopeblur")
                                .set("intensity", {800.0 / 64})
                                .set("samples", {8})
                                .set("mode", {double(mode)})
                                .operand(in)
                                .operand(plane)();
        double sum = 0, low = 2, high = -1;
        for (int s = 0; s < 8; ++s) {
            const double met = in.at(40 - s, 11);
            sum += met;
            low = std::min(low, met);
            high = std::max(high, met);
        }
        EXPECT_NEAR(out.at(40, 11), mode == 0 ? sum / 8 : mode == 1 ? low : high, 2e-4) << mode;
    }
}

TEST(RadialBlur, KeepsWhatIsTheSameAllTheWay)
{
    const auto angle = [](float x, float y) { return std::atan2(y - 0.5f, x - 0.5f); };
    const Picture rays =
        drawn(128, 128, [&](float x, float y) { return 0.5f + 0.5f * std::cos(4 * angle(x, y)); });
    const Picture rings = drawn(128, 128, [](float x, float y) {
        return 0.5f + 0.5f * std::cos(40 * std::hypot(x - 0.5f, y - 0.5f));
    });
    const auto run = [](const Picture& in, int mode, double amount) {
        return Evaluation("radialblur", 128, 128)
            .set("mode", {double(mode)})
            .set("amount", {amount})
            .operand(in)();
    };
    const Picture zoomed = run(rays, 0, 0.3), spun = run(rings, 1, 0.2), mixed = run(rays, 1, 0.25);
    for (int i = 0; i < 20; ++i) { // well away from the centre and the corners
        EXPECT_NEAR(zoomed.at(100, 30 + 3 * i), rays.at(100, 30 + 3 * i), 0.01);
        EXPECT_NEAR(spun.at(90, 40 + 2 * i), rings.at(90, 40 + 2 * i), 0.02);
        // A quarter turn holds a whole period of four rays.
        EXPECT_NEAR(mixed.at(100, 40 + 2 * i), 0.5, 0.01);
    }
}

} // namespace vellor::nodes::test
