#include "platform/nodes/tests/noderunner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace vellor::nodes::test {

namespace {

/// A Gaussian blur by its definition, in double precision, wrapping around.
Picture blurred(const Picture& in, double sigma)
{
    const auto pass = [&](const Picture& from, bool down) {
        Picture to(from.width(), from.height());
        const int reach = static_cast<int>(sigma * 6.0) + 1;
        for (int y = 0; y < from.height(); ++y) {
            for (int x = 0; x < from.width(); ++x) {
                double sum = 0.0, weights = 0.0;
                for (int t = -reach; t <= reach; ++t) {
                    const double weight = std::exp(-0.5 * t * t / (sigma * sigma));
                    sum += weight * (down ? from.at(x, y + t) : from.at(x + t, y));
                    weights += weight;
                }
                to.at(x, y) = static_cast<float>(sum / weights);
            }
        }
        return to;
    };
    return pass(pass(in, false), true);
}

double worstDifference(const Picture& a, const Picture& b)
{
    double worst = 0.0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            worst = std::max(worst, double(std::fabs(a.at(x, y) - b.at(x, y))));
    return worst;
}

Picture squares(int width, int height)
{
    return drawn(width, height, [](float x, float y) { return (x < 0.4f) != (y < 0.3f) ? 1.0f : 0.0f; });
}

} // namespace

TEST(GaussianBlur, AgreesWithTheDefinition)
{
    // White noise, edges, a point, and stripes that a reduction by two or four would alias.
    const Picture point = drawn(128, 128, [](float x, float y) { return x + y < 0.008f ? 1.0f : 0.0f; });
    const Picture stripes = drawn(128, 128, [](float x, float y) {
        return 0.5f + 0.5f * std::sin(6.2831853f * (55.0f * x + 28.0f * y));
    });
    for (const double sigma : {0.6, 3.99, 4.0, 8.0, 20.0, 47.0}) {
        for (const Picture& in :
             {noise(128, 128), squares(128, 128), squares(128, 32), squares(96, 60), point, stripes}) {
            const Picture out = Evaluation("gaussianblur", in.width(), in.height())
                                    .set("sigma", {sigma * 1000.0 / in.width()})
                                    .operand(in)();
            EXPECT_LT(worstDifference(out, blurred(in, sigma)), 2e-4)
                << sigma << ", " << in.width() << 'x' << in.height();
        }
    }
    const Picture in = noise(32, 32);
    EXPECT_TRUE(Evaluation("gaussianblur", 32, 32).set("sigma", {0}).operand(in)() == in);
}

TEST(BoxBlur, IsTheMeanOverASquare)
{
    struct Case
    {
        int width, height;
        std::vector<double> radii;
    };
    // Windows wider than the picture is high, of sums of whole tiles, and rows cut into blocks.
    const Case cases[] = {{96, 96, {0.0, 0.3, 1.0, 7.25, 31.0, 36.6, 48.0}},
                          {96, 70, {0.3, 7.25, 48.0}},
                          {96, 5, {0.3, 7.25, 48.0}},
                          {300, 150, {131.5}},
                          {2100, 20, {3.25, 70.5}},
                          {4112, 3, {16.0}}};
    for (const auto& [width, height, radii] : cases) {
        const Picture in = noise(width, height);
        for (const double radius : radii) {
            const int reach = static_cast<int>(radius) + 1;
            const Picture out =
                Evaluation("boxblur", width, height).set("radius", {radius * 1000.0 / width}).operand(in)();
            const auto weight = [&](int d) {
                return std::min(1.0, std::max(0.0, radius + 1.0 - std::abs(d)));
            };
            for (int y = 0; y < height; y += 13) {
                for (int x = 0; x<width; x += width> 1000 ? 31 : 5) {
                    double sum = 0.0;
                    for (int dy = -reach; dy <= reach; ++dy)
                        for (int dx = -reach; dx <= reach; ++dx)
                            sum += weight(dx) * weight(dy) * in.at(x + dx, y + dy);
                    ASSERT_NEAR(out.at(x, y), sum / std::pow(2.0 * radius + 1.0, 2), 2e-6)
                        << radius << ", " << width << " x " << height << " at " << x << ' ' << y;
                }
            }
            EXPECT_TRUE(Evaluation("boxblur", width, height)
                            .set("radius", {radius * 1000.0 / width})
                            .operand(in)
                            .split(1, 7)() == out);
        }
    }
}

TEST(DirectionalBlur, IsTheMeanAlongALine)
{
    const Picture in = noise(64, 64);
    const Picture out =
        Evaluation("directionalblur", 64, 64).set("length", {16.0 * 1000.0 / 64.0}).operand(in)();
    for (int x = 0; x < 64; ++x) {
        double sum = 0.0; // 16 samples around the pixel lie between pixels
        for (int t = -8; t < 8; ++t)
            sum += 0.5 * (in.at(x + t, 9) + in.at(x + t + 1, 9));
        EXPECT_NEAR(out.at(x, 9), sum / 16.0, 0.03) << x;
    }
    EXPECT_NEAR(meanOf(out), meanOf(in), 1e-5);
    EXPECT_TRUE(Evaluation("directionalblur", 64, 64).set("length", {0}).operand(in)() == in);
}

TEST(Normal, OfAPlaneInEveryFormat)
{
    // Rises by 0.5 over the width and falls by 0.25 over the height; away from the edges, where it wraps.
    const Picture plane = drawn(64, 64, [](float x, float y) { return 0.5f * x - 0.25f * y; });
    const double nx = -0.5 * 2.0, ny = 0.25 * 2.0,
                 length = std::sqrt(nx * nx + ny * ny + 1.0); // intensity 200: factor 2
    const double x = 0.5 + 0.5 * nx / length, y = 0.5 + 0.5 * ny / length, z = 1.0 / length,
                 h = plane.at(30, 30);
    struct Case
    {
        int format;
        double r, g, b, a;
    };
    const Case cases[] = {
        {0, x, y, 0.5 + 0.5 * z, h},
        {1, 1 - x, y, 0.5 + 0.5 * z, h},
        {2, x, 1 - y, 0.5 + 0.5 * z, h},
        {4, x, y, z, h},
        {8, x, y, 0, h},
        {12, x, 0, 0, y},
        {15, 1 - x, 0, 0, 1 - y},
    };
    for (const Case& row : cases) {
        const Picture out = Evaluation("normal", 64, 64)
                                .set("intensity", {200})
                                .set("format", {double(row.format)})
                                .operand(plane)();
        const double expected[4] = {row.r, row.g, row.b, row.a};
        for (int c = 0; c < 4; ++c)
            EXPECT_NEAR(out.at(30, 30, c), expected[c], 1e-4) << row.format << " channel " << c;
    }
}

TEST(Transform, IdentityQuarterTurnAndTiling)
{
    const Picture in = noise(64, 64);
    EXPECT_LT(worstDifference(Evaluation("transform", 64, 64).operand(in)(), in), 1e-6);
    const Picture turned = Evaluation("transform", 64, 64).set("rotation", {0.25}).operand(in)();
    const Picture moved = Evaluation("transform", 64, 64).set("offset", {0.25, 0.5}).operand(in)();
    const Picture tiled = Evaluation("transform", 64, 64).set("tiling", {2, 2}).operand(in)();
    const Picture mirrored = Evaluation("transform", 64, 64).set("scale", {-1, 1}).operand(in)();
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            EXPECT_NEAR(turned.at(63 - y, x), in.at(x, y), 1e-5f); // clockwise, y down
            EXPECT_NEAR(moved.at(x + 16, y + 32), in.at(x, y), 1e-5f);
            EXPECT_NEAR(mirrored.at(63 - x, y), in.at(x, y), 1e-5f);
        }
    }
    const double mean = (in.at(8, 4) + in.at(9, 4) + in.at(8, 5) + in.at(9, 5)) / 4.0;
    EXPECT_NEAR(tiled.at(20, 18), tiled.at(52, 50), 1e-5f);
    EXPECT_NEAR(tiled.at((8 - 32) / 2 + 32 + 0, (4 - 32) / 2 + 32), mean, 1e-5);
    const Picture far =
        Evaluation("transform", 64, 64).set("scale", {0.5, 0.5}).set("wrap", {0}).operand(in)();
    EXPECT_EQ(far.at(4, 32), 0.0f);
    EXPECT_EQ(far.at(60, 60), 0.0f);
}

TEST(Warp, ByNothingIsIdentityAndAlongADirectionMoves)
{
    const Picture in = noise(64, 64), even = drawn(64, 64, [](float, float) { return 0.5f; });
    EXPECT_LT(worstDifference(Evaluation("warp", 64, 64).operand(in).operand(even)(), in), 1e-6);
    // Half the height of 25 hundredths: an eighth of the width.
    const Picture moved =
        Evaluation("warp", 64, 64).set("mode", {1}).set("intensity", {25}).operand(in).operand(even)();
    const Picture down = Evaluation("warp", 64, 64)
                             .set("mode", {1})
                             .set("intensity", {25})
                             .set("angle", {0.25})
                             .operand(in)
                             .operand(even)();
    for (int x = 0; x < 64; ++x) {
        EXPECT_NEAR(moved.at(x, 7), in.at(x + 8, 7), 1e-5f);
        EXPECT_NEAR(down.at(x, 7), in.at(x, 15), 1e-5f);
    }
    Picture vectors(64, 64, 4);
    for (int i = 0; i < 64 * 64; ++i)
        for (int c = 0; c < 4; ++c)
            vectors.at(i % 64, i / 64, c) = c == 0 ? 0.75f : 0.5f;
    const Picture pointed =
        Evaluation("vectorwarp", 64, 64).set("intensity", {12.5}).operand(in).operand(vectors)();
    EXPECT_NEAR(pointed.at(20, 7), in.at(24, 7), 1e-5f);
}

TEST(Distance, AgreesWithSearching)
{
    const int width = 48, height = 32;
    const Picture random = noise(width, height);
    const Picture mask = drawn(width, height, [](float, float) { return 0.0f; });
    Picture sites = mask;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            sites.at(x, y) = random.at(x, y) > 0.99f ? 1.0f : 0.0f;
    const Picture out = Evaluation("distance", width, height).set("radius", {1}).operand(sites)();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            double best = 1e9;
            for (int sy = -height; sy < 2 * height; ++sy)
                for (int sx = -width; sx < 2 * width; ++sx)
                    if (sites.at(sx, sy) > 0.5f)
                        best = std::min(best, std::hypot(sx - x, sy - y));
            EXPECT_NEAR(out.at(x, y), 1.0 - best / width, 1e-5) << x << ' ' << y;
        }
    }
    EXPECT_EQ(meanOf(Evaluation("distance", width, height).operand(mask)()), 0.0);
    EXPECT_EQ(meanOf(Evaluation("distance", width, height).set("side", {1}).operand(mask)()), 0.0);
}

TEST(AmbientOcclusion, SeesTheSky)
{
    const Picture flat = drawn(128, 128, [](float, float) { return 0.3f; });
    EXPECT_NEAR(meanOf(Evaluation("ambientocclusion", 128, 128).operand(flat)()), 1.0, 1e-6);
    // A long slot with walls 25.6 pixels high, 7 pixels away on either side. In direction a the horizon's
    // tangent is 3.66 cos a, and the mean of 1 / (1 + (3.66 cos a)^2) is 1 / sqrt(1 + 3.66^2) = 0.26. Samples
    // find the walls up to a third too far away, which gives 0.34, and a little smoothed.
    const Picture slot =
        drawn(128, 128, [](float x, float) { return std::fabs(x - 0.5f) < 0.05f ? 0.0f : 1.0f; });
    const Picture out =
        Evaluation("ambientocclusion", 128, 128).set("depth", {20}).set("radius", {0.4}).operand(slot)();
    EXPECT_GT(out.at(64, 64), 0.25f);
    EXPECT_LT(out.at(64, 64), 0.36f);
    EXPECT_NEAR(out.at(10, 64), 1.0f, 1e-6f);
    EXPECT_NEAR(out.at(64, 10), out.at(64, 100), 1e-6f);
}

TEST(AmbientOcclusion, NearsTheIntegralOverAllDirections)
{
    // Waves of several lengths, in sizes whose copies halve along both axes, one, and none, and smaller ones
    // than what is read at a time.
    for (const auto& [width, height] : {std::pair(192, 96), {190, 95}, {161, 87}, {12, 20}}) {
        const Picture in = drawn(width, height, [](float x, float y) {
            const double turn = 6.283185307179586;
            return static_cast<float>(0.5 + 0.2 * std::sin(turn * (2 * x + y)) +
                                      0.15 * std::sin(turn * (5 * y - 3 * x)) * std::cos(turn * 7 * x));
        });
        const double depth = 0.08 * width, radius = 0.3 * width;
        const Picture out = Evaluation("ambientocclusion", width, height)
                                .set("depth", {8})
                                .set("radius", {0.3})
                                .operand(in)();
        const auto heightAt = [&](double x, double y) {
            const double left = std::floor(x), top = std::floor(y), u = x - left, v = y - top;
            const int column = int(left), row = int(top);
            return (in.at(column, row) * (1 - u) + in.at(column + 1, row) * u) * (1 - v) +
                   (in.at(column, row + 1) * (1 - u) + in.at(column + 1, row + 1) * u) * v;
        };
        double difference = 0.0, worst = 0.0;
        for (int y = 0; y < height; ++y)
            for (int x = y % 16; x < width; x += 16) {
                double light = 0.0;
                for (int d = 0; d < 64; ++d) {
                    const double angle = (d + 0.5) * 6.283185307179586 / 64;
                    double steepest = 0.0;
                    for (double far = 1.0; far <= radius; far += 0.5) {
                        const double fade = std::clamp(2.0 - 2.0 * far / (radius + 1.0), 0.0, 1.0);
                        const double rise =
                            heightAt(x + far * std::cos(angle), y + far * std::sin(angle)) - in.at(x, y);
                        steepest = std::max(steepest, rise * depth * fade / far);
                    }
                    light += 1.0 / (1.0 + steepest * steepest) / 64;
                }
                difference += std::fabs(out.at(x, y) - light) * 16 / (double(width) * height);
                worst = std::max(worst, std::fabs(out.at(x, y) - light));
            }
        EXPECT_LT(difference, 0.006) << width << " x " << height;
        EXPECT_LT(worst, 0.025) << width << " x " << height;
    }
}

TEST(Curvature, RidgesAreLightAndGroovesDark)
{
    const Picture wave =
        drawn(128, 128, [](float x, float) { return 0.5f + 0.5f * std::sin(x * 6.2831853f * 4.0f); });
    const Picture out =
        Evaluation("curvature", 128, 128).set("intensity", {1}).set("radius", {40}).operand(wave)();
    // A Gaussian of sigma s damps a wave of angular frequency w by exp(-(s w)^2 / 2).
    const double sigma = 0.04, frequency = 8.0 * 3.14159265358979,
                 kept = 1.0 - std::exp(-0.5 * std::pow(sigma * frequency, 2));
    for (int x = 0; x < 128; ++x)
        EXPECT_NEAR(out.at(x, 3), 0.5 + (wave.at(x, 3) - 0.5) * kept, 5e-4) << x;
}

} // namespace vellor::nodes::test
