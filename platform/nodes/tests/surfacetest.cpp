#include "platform/nodes/tests/noderunner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace vellor::nodes::test {

namespace {

constexpr double kTurn = 6.283185307179586;

/// Distance to the nearest pixel on the other side of 0.5, and which side the pixel itself is on.
double searched(const Picture& mask, int x, int y)
{
    const int w = mask.width(), h = mask.height();
    double best = 1e9;
    for (int sy = -h; sy < 2 * h; ++sy)
        for (int sx = -w; sx < 2 * w; ++sx)
            if ((mask.at(sx, sy) >= 0.5f) != (mask.at(x, y) >= 0.5f))
                best = std::min(best, std::hypot(sx - x, sy - y));
    return best;
}

} // namespace

TEST(Distance, EverySideAgreesWithSearching)
{
    struct Case
    {
        int width, height;
        float share; // of pixels in the mask
    };
    for (const Case& row :
         {Case{37, 23, 0.5f}, {140, 12, 0.02f}, {20, 33, 0.97f}, {1, 17, 0.3f}, {9, 1, 0.3f}}) {
        Picture mask = noise(row.width, row.height);
        for (int i = 0; i < row.width * row.height; ++i)
            mask.at(i % row.width, i / row.width) = mask.at(i % row.width, i / row.width) < row.share;
        Picture out[3];
        for (int side = 0; side < 3; ++side)
            out[side] = Evaluation("distance", row.width, row.height)
                            .set("side", {double(side)})
                            .set("radius", {1})
                            .operand(mask)
                            .split(5, 3)();
        for (int i = 0; i < row.width * row.height; ++i) {
            const int x = i % row.width, y = i / row.width;
            const bool in = mask.at(x, y) >= 0.5f;
            const double distance = std::min(searched(mask, x, y), 1e6) / row.width;
            const double half = 0.5 / row.width;
            EXPECT_NEAR(out[0].at(x, y), in ? 1.0 : std::max(1.0 - distance, 0.0), 1e-5) << x << ' ' << y;
            EXPECT_NEAR(out[1].at(x, y), in ? std::min(distance, 1.0) : 0.0, 1e-5) << x << ' ' << y;
            const double way = in ? distance - half : half - distance;
            EXPECT_NEAR(out[2].at(x, y), std::clamp(0.5 + 0.5 * way, 0.0, 1.0), 1e-5) << x << ' ' << y;
        }
    }
}

TEST(Distance, AntialiasedEdgesLieBetweenPixels)
{
    // A disc and a slanting strip, their greys the shares of 16 x 16 places in each pixel.
    const double x0 = 47.3, y0 = 52.8, radius = 20.4;
    const auto disc = [&](double x, double y) { return radius - std::hypot(x - x0, y - y0); };
    const auto strip = [&](double x, double y) {
        const double way = 0.6 * (x - x0) + 0.8 * (y - y0);
        return 15.2 - std::fabs(way);
    };
    const auto check = [&](const auto& inside, double worst) {
        Picture mask = drawn(96, 96, [](float, float) { return 0.0f; });
        for (int i = 0; i < 96 * 96 * 256; ++i) {
            const int x = i / 256 % 96, y = i / 256 / 96;
            const double px = x + (i % 16 + 0.5) / 16, py = y + (i / 16 % 16 + 0.5) / 16;
            mask.at(x, y) += inside(px, py) > 0 ? 1.0f / 256 : 0.0f;
        }
        const Picture out = Evaluation("distance", 96, 96)
                                .set("radius", {0.5})
                                .set("side", {2})
                                .set("edges", {1})
                                .operand(mask)
                                .split(7, 5)();
        for (int y = 24; y < 80; ++y)
            for (int x = 24; x < 72; ++x)
                EXPECT_NEAR((out.at(x, y) - 0.5) * 96, inside(x + 0.5, y + 0.5), worst) << x << ' ' << y;
    };
    check(disc, 0.05);
    check(strip, 0.05);
    // Without greys edges lie on the borders of pixels, across the picture's edge, too.
    const Picture bar = drawn(40, 8, [](float x, float) { return x < 0.25f ? 1.0f : 0.0f; });
    const Picture out = Evaluation("distance", 40, 8).set("radius", {1}).set("edges", {1}).operand(bar)();
    for (int x = 0; x < 40; ++x)
        EXPECT_NEAR(out.at(x, 3), 1.0 - std::clamp(std::min(x - 9.5, 39.5 - x), 0.0, 40.0) / 40, 1e-6) << x;
}

TEST(Curvature, MeanIsThatOfBallsAndCylinders)
{
    // Of 80 pixels' radius, white 128 pixels above black, at slopes up to 1.
    const auto bump = [](bool ball) {
        return drawn(256, 256, [=](float x, float y) {
            const double dx = x * 256 - 128, dy = ball ? y * 256 - 128 : 0.0;
            return float(std::sqrt(std::max(6400.0 - dx * dx - dy * dy, 0.0)) / 128);
        });
    };
    for (const bool ball : {true, false}) {
        const auto measured = [&](int output) {
            return Evaluation("curvature", 256, 256)
                .set("radius", {1000 * 2.0 / 256})
                .set("intensity", {output == 2 ? -8.0 : 8.0})
                .set("output", {double(output)})
                .set("measure", {1})
                .set("depth", {50})
                .operand(bump(ball))();
        };
        const Picture both = measured(0), convex = measured(1), hollow = measured(2);
        const double expected = 8 * 2.0 / 80 * (ball ? 1.0 : 0.5);
        for (int x = 72; x < 184; ++x) {
            EXPECT_NEAR(both.at(x, 128), 0.5 + expected, 0.03 * expected) << ball << ' ' << x;
            EXPECT_NEAR(convex.at(x, 128), expected, 0.03 * expected);
            EXPECT_EQ(hollow.at(x, 128), convex.at(x, 128)); // the picture upside down
        }
    }
}

TEST(Bevel, HasTheProfileAcrossAnEdge)
{
    // A bar from pixel 20 to 59; slopes are ten pixels wide.
    const Picture bar = drawn(100, 40, [](float x, float) { return x > 0.2f && x < 0.6f ? 1.0f : 0.0f; });
    for (int side = 0; side < 3; ++side) {
        for (int profile = 0; profile < 4; ++profile) {
            const Picture out = Evaluation("bevel", 100, 40)
                                    .set("width", {0.1})
                                    .set("side", {double(side)})
                                    .set("profile", {double(profile)})
                                    .operand(bar)();
            for (int x = 0; x < 40; ++x) {
                const double t =
                    std::clamp((x + 0.5 - 20.0) / 10.0 + 0.5 * (side == 2) + (side == 1), 0.0, 1.0);
                const double heights[4] = {t, std::sqrt(1 - (1 - t) * (1 - t)), 1 - std::sqrt(1 - t * t),
                                           t * t * (3 - 2 * t)};
                EXPECT_NEAR(out.at(x, 7), heights[profile], 1e-5) << side << ' ' << profile << ' ' << x;
                EXPECT_NEAR(out.at(79 - x, 7), out.at(x, 7), 1e-6) << x;
            }
        }
    }
}

TEST(Slope, OfAPlane)
{
    // White stands half the width above black: rises of 0.25 to the right and of 0.5 upwards.
    const Picture plane = drawn(64, 64, [](float x, float y) { return 0.5f * x - y; });
    const Picture steep =
        Evaluation("slope", 64, 64).set("intensity", {50}).set("high", {1}).operand(plane)();
    EXPECT_NEAR(steep.at(30, 30), std::atan(std::hypot(0.25, 0.5)) / (kTurn / 4), 1e-4);
    const Picture way = Evaluation("slope", 64, 64).set("output", {1}).operand(plane)();
    EXPECT_NEAR(way.at(30, 30), std::atan2(0.5, -0.25) / kTurn, 1e-4); // left and down the picture
}

TEST(Light, AgreesWithTheFormulas)
{
    Picture normals(8, 1, 4);
    for (int x = 0; x < 8; ++x) {
        const double n[3] = {0.1 * x, 0.3 - 0.05 * x, 0.8};
        for (int c = 0; c < 3; ++c)
            normals.at(x, 0, c) = static_cast<float>(0.5 + 0.5 * n[c] / std::hypot(n[0], n[1], n[2]));
        normals.at(x, 0, 3) = 1.0f;
    }
    const double az = 0.1 * kTurn, el = 0.15 * kTurn;
    const double l[3] = {std::cos(az) * std::cos(el), std::sin(az) * std::cos(el), std::sin(el)};
    const double length = std::hypot(l[0], l[1], l[2] + 1);
    const Picture out = Evaluation("light", 8, 1)
                            .set("angle", {0.1})
                            .set("elevation", {0.15})
                            .set("ambient", {0.1})
                            .set("specular", {0.7})
                            .set("glossiness", {0.3})
                            .operand(normals)();
    for (int x = 0; x < 8; ++x) {
        double facing = 0.0, half = 0.0;
        for (int c = 0; c < 3; ++c) {
            facing += (2.0 * normals.at(x, 0, c) - 1) * l[c];
            half += (2.0 * normals.at(x, 0, c) - 1) * (l[c] + (c == 2)) / length;
        }
        EXPECT_NEAR(out.at(x, 0), 0.1 + std::max(facing, 0.0) + 0.7 * std::pow(half, 16.0), 1e-5) << x;
    }
}

TEST(Shadow, OfAWallIsAsLongAsItsHeightTells)
{
    // A wall 25.6 pixels high, lit from the left: without softness, the shadow of 2 tan(elevation) rises.
    const Picture wall = drawn(256, 64, [](float x, float) { return x > 0.2f && x < 0.25f ? 1.0f : 0.0f; });
    const double elevation = 0.06, longest = 25.6 / std::tan(elevation * kTurn);
    const Picture out = Evaluation("shadow", 256, 64)
                            .set("depth", {10})
                            .set("angle", {0.5})
                            .set("elevation", {elevation})
                            .set("softness", {0})
                            .operand(wall)();
    const int from = 64; // the first pixel behind the wall
    for (int x = 0; x < 256; ++x) {
        const double behind = x - (from - 1);
        const bool dark = x >= from && behind < longest * 0.93, lit = x < from || behind > longest * 1.07 + 1;
        if (dark || lit) {
            EXPECT_EQ(out.at(x, 9), dark ? 0.0f : 1.0f) << x;
        }
    }
    EXPECT_EQ(
        meanOf(Evaluation("shadow", 64, 64).operand(drawn(64, 64, [](float, float) { return 1.0f; }))()),
        1.0);
}

TEST(HeightFromNormal, TurnsBackNormalsAtAnySize)
{
    struct Case
    {
        int width, height;
    };
    for (const Case& size : {Case{64, 64}, {48, 30}, {128, 17}, {1, 40}}) {
        const Picture height = drawn(size.width, size.height, [&](float x, float y) {
            const double across = size.width > 1 ? std::sin(kTurn * (2 * x + y)) : 0.0;
            return static_cast<float>(0.5 + 0.2 * across + 0.15 * std::cos(kTurn * 3 * y));
        });
        const Picture normals =
            Evaluation("normal", size.width, size.height).set("intensity", {8}).operand(height)();
        const Picture back = Evaluation("heightfromnormal", size.width, size.height)
                                 .set("intensity", {8})
                                 .operand(normals)
                                 .split(64, 5)();
        for (int i = 0; i < size.width * size.height; ++i) {
            const int x = i % size.width, y = i / size.width;
            ASSERT_NEAR(back.at(x, y), height.at(x, y), 1e-3) << size.width << ": " << x << ' ' << y;
        }
    }
    // Exact normals of a wave, from its derivative; white stands a tenth of the width above black.
    Picture normals(128, 128, 4);
    for (int i = 0; i < 128 * 128; ++i) {
        const double slope = 0.1 * 0.5 * kTurn * std::cos(kTurn * (i % 128 + 0.5) / 128);
        const double n[4] = {-slope, 0, 1, 1};
        for (int c = 0; c < 4; ++c)
            normals.at(i % 128, i / 128, c) =
                static_cast<float>(c == 3 ? 1.0 : 0.5 + 0.5 * n[c] / std::hypot(slope, 1.0));
    }
    const Picture wave = Evaluation("heightfromnormal", 128, 128).set("intensity", {10}).operand(normals)();
    const Picture stretched = Evaluation("heightfromnormal", 128, 128).set("stretch", {1}).operand(normals)();
    for (int x = 0; x < 128; ++x) {
        const double sine = std::sin(kTurn * (x + 0.5) / 128);
        EXPECT_NEAR(wave.at(x, 5), 0.5 + 0.5 * sine, 1e-3) << x;
        EXPECT_NEAR(stretched.at(x, 5), 0.5 + 0.5 * sine / std::sin(kTurn * 32.5 / 128), 1e-3) << x;
    }
}

} // namespace vellor::nodes::test
