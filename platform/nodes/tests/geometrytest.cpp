#include "platform/nodes/tests/noderunner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace vellor::nodes::test {

namespace {

enum class Beyond
{
    Nothing,
    Again,
    Mirrored
};

double pixelAt(const Picture& in, int x, int y, int c, Beyond beyond)
{
    const auto inside = [&](int i, int size) {
        const int turned = ((i % (2 * size)) + 2 * size) % (2 * size);
        return beyond == Beyond::Mirrored && turned >= size ? 2 * size - 1 - turned : turned % size;
    };
    if (beyond == Beyond::Nothing && (x < 0 || y < 0 || x >= in.width() || y >= in.height()))
        return 0.0;
    return double(in.at(inside(x, in.width()), inside(y, in.height()), c));
}

/// Keys' cubic with a = -1/2, and the triangle: interpolation as convolution.
double kernelAt(double t, bool cubic)
{
    t = std::fabs(t);
    if (!cubic)
        return std::max(1.0 - t, 0.0);
    if (t < 1.0)
        return (1.5 * t - 2.5) * t * t + 1.0;
    return t < 2.0 ? ((-0.5 * t + 2.5) * t - 4.0) * t + 2.0 : 0.0;
}

/// A picture between its pixels, whose centres are whole numbers.
double between(const Picture& in, double x, double y, int c, Beyond beyond, bool cubic)
{
    double sum = 0.0;
    const int left = int(std::floor(x)), top = int(std::floor(y));
    for (int j = top - 1; j <= top + 2; ++j)
        for (int i = left - 1; i <= left + 2; ++i)
            sum += pixelAt(in, i, j, c, beyond) * kernelAt(x - i, cubic) * kernelAt(y - j, cubic);
    return sum;
}

Picture smooth(int width, int height)
{
    return drawn(width, height, [](float x, float y) {
        return 0.5f + 0.3f * std::sin(6.2831853f * (x + 2.0f * y)) +
               0.15f * std::cos(6.2831853f * (3.0f * x - y));
    });
}

double varianceOf(const Picture& picture)
{
    const double mean = meanOf(picture);
    double sum = 0.0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            sum += std::pow(picture.at(x, y) - mean, 2);
    return sum / (double(picture.width()) * picture.height());
}

} // namespace

TEST(Geometry, TransformAgreesWithTheDefinition)
{
    struct Case
    {
        int channels, filter; // 1: bicubic, 2: bilinear
        double scale, turns, offsetX, offsetY;
    };
    const Case cases[] = {{1, 2, 1.1, 30.0 / 360.0, 0.0, 0.0}, {4, 2, 1.1, 30.0 / 360.0, 0.3, -0.7},
                          {1, 1, 1.7, -0.2, 0.013, 0.4},       {4, 1, -1.3, 0.6, 0.0, 3.2},
                          {1, 2, 0.11, 0.05, 0.0, 0.0},        {4, 2, 0.04, 0.4, 0.1, 0.0}};
    for (const Case& row : cases) {
        for (const Beyond beyond : {Beyond::Nothing, Beyond::Again, Beyond::Mirrored}) {
            const Picture in = noise(144, 80, row.channels);
            const Picture out = Evaluation("transform", 144, 80)
                                    .set("scale", {row.scale, row.scale})
                                    .set("rotation", {row.turns})
                                    .set("offset", {row.offsetX, row.offsetY})
                                    .set("wrap", {double(beyond)})
                                    .set("filter", {double(row.filter)})
                                    .operand(in)();
            const double cosine = std::cos(row.turns * 2.0 * M_PI), sine = std::sin(row.turns * 2.0 * M_PI);
            double worst = 0.0;
            for (int y = 0; y < 80; ++y) {
                for (int x = 0; x < 144; ++x) {
                    const double dx = x - 71.5 - row.offsetX * 144, dy = y - 39.5 - row.offsetY * 80;
                    const double u = (cosine * dx + sine * dy) / row.scale + 71.5;
                    const double v = (cosine * dy - sine * dx) / row.scale + 39.5;
                    for (int c = 0; c < row.channels; ++c)
                        worst = std::max(worst, std::fabs(out.at(x, y, c) -
                                                          between(in, u, v, c, beyond, row.filter == 1)));
                }
            }
            // Angles and scales are floats: a distance of 1000 pixels is known to 1e-4.
            EXPECT_LT(worst, row.scale < 0.5 ? 2e-3 : 1e-4) << row.scale << ", edges " << int(beyond);
        }
    }
}

TEST(Geometry, WarpsAgreeWithTheDefinitionHoweverFarTheyReach)
{
    const Picture map = noise(144, 80, 4, 7);
    for (const int channels : {1, 4}) {
        const Picture in = noise(144, 80, channels);
        for (const double intensity : {1.0, 50.0, 700.0}) {
            const Picture out =
                Evaluation("vectorwarp", 144, 80).set("intensity", {intensity}).operand(in).operand(map)();
            double worst = 0.0;
            for (int y = 0; y < 80; ++y)
                for (int x = 0; x < 144; ++x)
                    for (int c = 0; c < channels; ++c) {
                        const double reach = intensity * 0.02 * 144;
                        const double u = x + (map.at(x, y, 0) - 0.5) * reach;
                        const double v = y + (map.at(x, y, 1) - 0.5) * reach;
                        worst = std::max(
                            worst, std::fabs(out.at(x, y, c) - between(in, u, v, c, Beyond::Again, false)));
                    }
            EXPECT_LT(worst, 1e-5 * std::max(intensity, 1.0)) << intensity;
        }
    }
}

TEST(Geometry, WhatMovesNothingOrWholePixelsIsExact)
{
    const Picture in = noise(70, 50, 4), map = noise(70, 50, 1, 3);
    const auto of = [&](const char* kind) { return Evaluation(kind, 70, 50).operand(in); };
    EXPECT_TRUE(of("transform")() == in);
    EXPECT_TRUE(of("transform").set("filter", {1}).set("wrap", {2})() == in);
    EXPECT_TRUE(of("crop").set("rectangle", {0, 0, 1, 1})() == in);
    EXPECT_TRUE(of("swirl").set("amount", {0})() == in);
    EXPECT_TRUE(of("spherise").set("amount", {0})() == in);
    EXPECT_TRUE(of("directionalwarp").operand(map).set("intensity", {0})() == in);
    EXPECT_TRUE(of("multidirectionalwarp").operand(map).set("intensity", {0}).set("mode", {2})() == in);
    const Picture moved = of("offset").set("offset", {7.0 / 70.0, -13.0 / 50.0})();
    const Picture left = of("mirror").set("mode", {2})(),
                  cut = of("crop").set("mode", {1}).set("rectangle", {0.1, 0.2, 0.5, 1})();
    for (int y = 0; y < 50; ++y) {
        for (int x = 0; x < 70; ++x) {
            EXPECT_EQ(moved.at(x + 7, y - 13, 2), in.at(x, y, 2));
            EXPECT_EQ(left.at(x, y, 1), in.at(std::min(x, 69 - x), std::min(y, 49 - y), 1));
            EXPECT_EQ(cut.at(x, y, 0), x >= 7 && x < 35 && y >= 10 ? in.at(x, y, 0) : 0.0f);
        }
    }
}

// Results of this size go past the caches.
TEST(Geometry, LargePicturesMoveByHalfAPixel)
{
    const Picture in = noise(2048, 1024, 4);
    const Picture out = Evaluation("offset", 2048, 1024).set("offset", {0.5 / 2048.0, 0}).operand(in)();
    float worst = 0.0f;
    for (int y = 0; y < 1024; ++y)
        for (int x = 0; x < 2048; ++x)
            for (int c = 0; c < 4; ++c)
                worst = std::max(worst,
                                 std::fabs(out.at(x, y, c) - 0.5f * (in.at(x, y, c) + in.at(x - 1, y, c))));
    EXPECT_LT(worst, 1e-6f);
}

TEST(Geometry, WhatBecomesSmallerIsAveraged)
{
    const Picture in = noise(64, 64);
    const Picture half = Evaluation("transform", 64, 64).set("scale", {0.5, 0.5}).operand(in)();
    EXPECT_NEAR(half.at(20, 30), (in.at(8, 28) + in.at(9, 28) + in.at(8, 29) + in.at(9, 29)) / 4.0, 1e-6);
    for (const double turns : {0.0, 0.1}) {
        const Picture thin =
            Evaluation("transform", 64, 64).set("tiling", {1, 16}).set("rotation", {turns}).operand(in)();
        EXPECT_NEAR(meanOf(thin), meanOf(in), 3e-3);
        EXPECT_LT(varianceOf(thin), varianceOf(in) / 6.0); // 16 values in one, read between pixels
    }
}

TEST(Geometry, DirectionsCombine)
{
    const Picture in = noise(64, 64), full = drawn(64, 64, [](float, float) { return 1.0f; });
    for (int mode = 0; mode < 3; ++mode) {
        const Picture out = Evaluation("multidirectionalwarp", 64, 64)
                                .set("intensity", {6.25})
                                .set("mode", {double(mode)})
                                .operand(in)
                                .operand(full)();
        const float n[4] = {in.at(16, 20), in.at(20, 16), in.at(24, 20), in.at(20, 24)};
        const float expected[3] = {(n[0] + n[1] + n[2] + n[3]) / 4.0f, *std::min_element(n, n + 4),
                                   *std::max_element(n, n + 4)};
        EXPECT_NEAR(out.at(20, 20), expected[mode], 1e-6f);
    }
}

TEST(Geometry, PolarThereAndBack)
{
    const Picture in = smooth(256, 256);
    const Picture polar = Evaluation("cartesiantopolar", 256, 256).set("rotation", {0.1}).operand(in)();
    const Picture back = Evaluation("polartocartesian", 256, 256).set("rotation", {0.1}).operand(polar)();
    // A quarter turn on from the left edge, half the radius out: below the middle.
    const double angle = 0.35 * 2.0 * M_PI;
    EXPECT_NEAR(Evaluation("cartesiantopolar", 256, 256).set("rotation", {0.1}).operand(in)().at(64, 128),
                between(in, 127.5 + 64.25 * std::cos(angle + M_PI / 256),
                        127.5 + 64.25 * std::sin(angle + M_PI / 256), 0, Beyond::Again, false),
                1e-4);
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x)
            if (std::hypot(x - 127.5, y - 127.5) < 127.0)
                EXPECT_NEAR(back.at(x, y), in.at(x, y), 3e-3) << x << ' ' << y;
}

TEST(Geometry, SwirlsAndBallsEndAtTheirRadius)
{
    const Picture in = smooth(128, 128);
    const Picture swirl = Evaluation("swirl", 128, 128).set("radius", {0.25}).operand(in)();
    const Picture ball = Evaluation("spherise", 128, 128).set("radius", {0.25}).operand(in)();
    EXPECT_EQ(swirl.at(64, 20), in.at(64, 20));
    EXPECT_EQ(ball.at(20, 64), in.at(20, 64));
    // Halfway out a quarter of half a turn is left: 45 degrees. The centre lies between pixels.
    const double a = std::pow(1.0 - std::hypot(16.5, 0.5) / 32.0, 2) * M_PI;
    EXPECT_NEAR(swirl.at(80, 64),
                between(in, 63.5 + 16.5 * std::cos(a) + 0.5 * std::sin(a),
                        63.5 + 0.5 * std::cos(a) - 16.5 * std::sin(a), 0, Beyond::Again, false),
                1e-4);
    // A ball's place at radius sin(a) shows the arc a.
    const double place = std::hypot(16.5, 0.5), along = std::asin(place / 32.0) * 2.0 / M_PI * 32.0 / place;
    EXPECT_NEAR(ball.at(80, 64),
                between(in, 63.5 + 16.5 * along, 63.5 + 0.5 * along, 0, Beyond::Again, false), 1e-4);
}

TEST(MakeTileable, HasNoSeamAndKeepsTheStatistics)
{
    // Part of a texture whose values are spread unevenly.
    Picture texture = noise(512, 384);
    for (int y = 0; y < 384; ++y)
        for (int x = 0; x < 512; ++x)
            texture.at(x, y) = std::pow(texture.at(x, y), 8.0f);
    texture = Evaluation("gaussianblur", 512, 384).set("sigma", {4}).operand(texture)();
    Picture in(256, 192);
    for (int y = 0; y < 192; ++y)
        for (int x = 0; x < 256; ++x)
            in.at(x, y) = texture.at(x, y);
    const auto step = [](const Picture& picture, int x) {
        double sum = 0.0;
        for (int y = 0; y < 192; ++y)
            sum += std::fabs(picture.at(x, y) - picture.at(x - 1, y));
        return sum;
    };
    double inside = 0.0;
    for (int x = 1; x < 256; ++x)
        inside = std::max(inside, step(in, x));
    ASSERT_GT(step(in, 0), 1.5 * inside);
    for (int method = 0; method < 2; ++method) {
        for (int blend = 0; blend < 3; ++blend) {
            const Picture out = Evaluation("maketileable", 256, 192)
                                    .set("method", {double(method)})
                                    .set("blend", {double(blend)})
                                    .operand(in)();
            EXPECT_LE(step(out, 0), 1.1 * inside) << method << ' ' << blend;
            EXPECT_NEAR(meanOf(out) / meanOf(in), 1.0, 0.06) << method << ' ' << blend;
            if (blend > 0)
                EXPECT_NEAR(varianceOf(out) / varianceOf(in), 1.0, 0.2) << method << ' ' << blend;
            else
                EXPECT_LT(varianceOf(out), 0.9 * varianceOf(in)) << method;
        }
    }
    // Half of the ground shows: as much of it shows afterwards, however the rest is spread.
    std::vector<float> sorted(256 * 192);
    for (int i = 0; i < 256 * 192; ++i)
        sorted[i] = in.at(i % 256, i / 256);
    std::sort(sorted.begin(), sorted.end());
    for (int i = 0; i < 256 * 192; ++i)
        in.at(i % 256, i / 256) = std::max(in.at(i % 256, i / 256) - sorted[256 * 96], 0.0f);
    const Picture out =
        Evaluation("maketileable", 256, 192).set("method", {1}).set("blend", {2}).operand(in)();
    int bare = 0, high = 0;
    for (int i = 0; i < 256 * 192; ++i) {
        bare += out.at(i % 256, i / 256) < 0.002f * sorted.back();
        high += out.at(i % 256, i / 256) > sorted[256 * 172] - sorted[256 * 96];
    }
    EXPECT_NEAR(bare / (256.0 * 192.0), 0.5, 0.05);
    EXPECT_NEAR(high / (256.0 * 192.0), 20.0 / 192.0, 0.03);
}

} // namespace vellor::nodes::test
