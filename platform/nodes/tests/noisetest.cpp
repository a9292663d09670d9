// Noise against its definitions, evaluated plainly in double precision: each pixel by itself, every point of
// the lattice that could matter, no row shared.

#include "platform/nodes/scalar.h"
#include "platform/nodes/tests/noderunner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace vellor::nodes::test {

namespace {

constexpr double kTurn = 6.28318530717958648;

int wrappedCell(int cell, int count)
{
    return (cell % count + count) % count;
}

double smooth(double t)
{
    return t * t * t * (t * (t * 6 - 15) + 10);
}

struct Lattice
{
    int across, down;
    std::uint32_t seed;
    double evolution;

    /// In turns.
    double angleAt(int x, int y) const
    {
        const std::uint32_t hash =
            scalar::hashLattice(static_cast<std::uint32_t>(wrappedCell(x, across)),
                                static_cast<std::uint32_t>(wrappedCell(y, down)), seed);
        return scalar::unitOf(hash) + (hash % 2 == 1 ? evolution : -evolution);
    }
    double ramp(int x, int y, double dx, double dy) const
    {
        return std::cos(kTurn * angleAt(x, y)) * dx + std::sin(kTurn * angleAt(x, y)) * dy;
    }
};

double bilinear(double u, double v, const std::function<double(int x, int y)>& corner)
{
    const int x = int(std::floor(u)), y = int(std::floor(v));
    const double a = smooth(u - x), b = smooth(v - y);
    return (1 - b) * ((1 - a) * corner(x, y) + a * corner(x + 1, y)) +
           b * ((1 - a) * corner(x, y + 1) + a * corner(x + 1, y + 1));
}

double perlinAt(const Lattice& lattice, double u, double v)
{
    return std::sqrt(2.0) * bilinear(u, v, [&](int x, int y) { return lattice.ramp(x, y, u - x, v - y); });
}

double valueAt(const Lattice& lattice, double u, double v)
{
    return 0.85 * bilinear(u, v, [&](int x, int y) {
               const double turns = lattice.angleAt(x, y), t = turns - std::floor(turns);
               return t < 0.5 ? 4 * t - 1 : 3 - 4 * t;
           });
}

/// All points within the reach of a triangle's height, wherever they are.
double simplexAt(const Lattice& lattice, double u, double v)
{
    double sum = 0;
    for (int y = int(v) - 3; y <= int(v) + 3; ++y) {
        for (int x = int(u) - 3; x <= int(u) + 3; ++x) {
            const double dx = u - x - (wrappedCell(y, 2) == 1 ? 0.5 : 0.0), dy = (v - y) * std::sqrt(0.75);
            const double t = std::max(0.0, 0.75 - dx * dx - dy * dy);
            sum += 12 * t * t * t * t * lattice.ramp(x, y, dx, dy);
        }
    }
    return sum;
}

struct KindOfNoise
{
    const char* name;
    double (*at)(const Lattice&, double u, double v);
    std::uint32_t seed;
};

const KindOfNoise kKinds[] = {{"perlin", perlinAt, 0x5bd1e995u},
                              {"valuenoise", valueAt, 0x2545f491u},
                              {"simplex", simplexAt, 0x1b873593u}};

double term(int mode, double n)
{
    return mode == 1 ? std::pow(std::max(0.0, 1 - std::fabs(n)), 2) : mode == 2 ? std::fabs(n) : n;
}

/// The sum of a seed's octaves at a place of the picture, 0 to 1 both ways.
double fractalAt(const KindOfNoise& kind, int mode, Lattice lattice, int octaves, int lacunarity, double gain,
                 double x, double y)
{
    double sum = 0, amplitude = 1, total = 0, squares = 0, shiftX = 0, shiftY = 0;
    for (int i = 0; i < octaves; ++i) {
        sum +=
            amplitude * term(mode, kind.at(lattice, x * lattice.across + shiftX, y * lattice.down + shiftY));
        total += amplitude;
        squares += amplitude * amplitude;
        amplitude *= gain;
        lattice.across *= lacunarity;
        lattice.down *= lacunarity;
        lattice.seed = scalar::nextHash(lattice.seed);
        shiftX = scalar::unitOf(lattice.seed);
        shiftY = scalar::unitOf(scalar::nextHash(lattice.seed ^ 0x55555555u));
    }
    const double results[] = {0.5 + 0.5 * sum / std::sqrt(squares), sum / total, 1.5 * sum / total,
                              std::fabs(sum) / std::sqrt(squares)};
    return results[mode];
}

double spreadOf(const Picture& picture)
{
    const double mean = meanOf(picture);
    double squares = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            squares += std::pow(picture.at(x, y) - mean, 2);
    return std::sqrt(squares / (double(picture.width()) * picture.height()));
}

} // namespace

TEST(LatticeNoise, IsTheSumOfItsOctaves)
{
    struct Size
    {
        int width, height, across, down, octaves, lacunarity;
    };
    // Cells of many pixels, of a few, of less than two; cells that are no whole number of pixels.
    const Size sizes[] = {
        {96, 60, 3, 2, 1, 2}, {77, 50, 5, 4, 3, 2}, {120, 40, 4, 2, 2, 5}, {64, 64, 50, 34, 1, 2}};
    for (const KindOfNoise& kind : kKinds) {
        for (const Size& size : sizes) {
            for (int mode = 0; mode < 4; ++mode) {
                const Picture picture = Evaluation(kind.name, size.width, size.height)
                                            .set("scale", {double(size.across), double(size.down)})
                                            .set("octaves", {double(size.octaves)})
                                            .set("lacunarity", {double(size.lacunarity)})
                                            .set("gain", {0.6})
                                            .set("mode", {double(mode)})
                                            .set("evolution", {2.3})
                                            .seed(7)();
                const Lattice lattice{size.across, size.down, scalar::mixBits(7 + kind.seed), 0.3};
                double worst = 0;
                for (int y = 0; y < size.height; ++y)
                    for (int x = 0; x < size.width; ++x)
                        worst =
                            std::max(worst, std::fabs(picture.at(x, y) -
                                                      fractalAt(kind, mode, lattice, size.octaves,
                                                                size.lacunarity, 0.6, (x + 0.5) / size.width,
                                                                (y + 0.5) / size.height)));
                EXPECT_LT(worst, 5e-5) << kind.name << ", mode " << mode << ", width " << size.width;
            }
        }
    }
}

TEST(LatticeNoise, WarpMovesPixelsAndNothingElse)
{
    for (const KindOfNoise& kind : kKinds) {
        Evaluation run(kind.name, 128, 96);
        const Picture still = run.seed(3).set("scale", {6, 0})();
        const Picture hardly = run.set("warp", {1e-6})(), moved = run.set("warp", {1})();
        double worst = 0, difference = 0;
        for (int y = 0; y < 96; ++y) {
            for (int x = 0; x < 128; ++x) {
                worst = std::max(worst, double(std::fabs(hardly.at(x, y) - still.at(x, y))));
                difference += std::fabs(moved.at(x, y) - still.at(x, y)) / (128 * 96);
            }
        }
        EXPECT_LT(worst, 2e-4) << kind.name;
        EXPECT_GT(difference, 0.05) << kind.name;
        EXPECT_NEAR(spreadOf(moved), spreadOf(still), 0.05) << kind.name;
    }
}

TEST(LatticeNoise, MeanAndSpreadAreTheSameForAnyOctaves)
{
    for (const KindOfNoise& kind : kKinds) {
        for (const int octaves : {1, 4, 8}) {
            const Picture picture =
                Evaluation(kind.name, 512, 512).set("scale", {32, 0}).set("octaves", {double(octaves)})();
            EXPECT_NEAR(meanOf(picture), 0.5, 0.02) << kind.name << octaves;
            EXPECT_NEAR(spreadOf(picture), 0.18, 0.04) << kind.name << octaves;
        }
    }
}

namespace {

struct CellPoint
{
    double x, y, value; // from the pixel; distance counts in cells
};

/// All points up to four cells away from a place in cells: farther than any that could matter.
std::vector<CellPoint> pointsAround(double u, double v, const Lattice& lattice, double jitter)
{
    std::vector<CellPoint> points;
    for (int y = int(v) - 4; y <= int(v) + 4; ++y) {
        for (int x = int(u) - 4; x <= int(u) + 4; ++x) {
            const std::uint32_t hash =
                scalar::hashLattice(static_cast<std::uint32_t>(wrappedCell(x, lattice.across)),
                                    static_cast<std::uint32_t>(wrappedCell(y, lattice.down)), lattice.seed);
            const std::uint32_t second = scalar::nextHash(hash);
            const double turns =
                scalar::unitOf(hash) + (second % 2 == 1 ? lattice.evolution : -lattice.evolution);
            const double radius = std::sqrt(scalar::unitOf(second)) * 0.5 * jitter;
            points.push_back({x + 0.5 + radius * std::cos(kTurn * turns) - u,
                              y + 0.5 + radius * std::sin(kTurn * turns) - v,
                              scalar::unitOf(scalar::nextHash(second))});
        }
    }
    return points;
}

/// Of the Euclidean metric, the square: it puts points in the same order.
double lengthOf(const CellPoint& point, int metric)
{
    const double x = std::fabs(point.x), y = std::fabs(point.y);
    return metric == 0 ? x * x + y * y : metric == 1 ? x + y : std::max(x, y);
}

/// The nearest point comes first, then the second.
void putNearestFirst(std::vector<CellPoint>& points, int metric)
{
    std::partial_sort(
        points.begin(), points.begin() + 2, points.end(),
        [=](const CellPoint& a, const CellPoint& b) { return lengthOf(a, metric) < lengthOf(b, metric); });
}

/// f1, f2, f2-f1, value, edge of a pixel.
std::array<double, 5> cellularAt(std::vector<CellPoint> points, int metric)
{
    putNearestFirst(points, 0);
    double border = 1e9;
    const CellPoint own = points[0];
    for (std::size_t i = 1; i < points.size(); ++i) {
        const double wayX = points[i].x - own.x, wayY = points[i].y - own.y;
        const double along = (points[i].x + own.x) * wayX + (points[i].y + own.y) * wayY;
        border = std::min(border, along / 2 / std::sqrt(wayX * wayX + wayY * wayY));
    }
    putNearestFirst(points, metric);
    double f1 = lengthOf(points[0], metric), f2 = lengthOf(points[1], metric);
    if (metric == 0) {
        f1 = std::sqrt(f1);
        f2 = std::sqrt(f2);
    }
    return {f1, f2, f2 - f1, points[0].value, 2 * border};
}

} // namespace

TEST(Cellular, MeasuresToAllPoints)
{
    struct Size
    {
        int width, height, across, down;
        double jitter;
    };
    const Size sizes[] = {
        {160, 128, 40, 32, 1}, {200, 40, 9, 2, 1}, {90, 70, 60, 60, 0.9}, {64, 64, 3, 1, 0.3}};
    for (const Size& size : sizes) {
        for (int metric = 0; metric < 3; ++metric) {
            std::array<Picture, 5> pictures;
            for (int output = 0; output < 5; ++output)
                pictures[output] = Evaluation("cellular", size.width, size.height)
                                       .set("scale", {double(size.across), double(size.down)})
                                       .set("jitter", {size.jitter})
                                       .set("metric", {double(metric)})
                                       .set("output", {double(output)})
                                       .set("evolution", {0.2})
                                       .seed(9)();
            const Lattice lattice{size.across, size.down, scalar::mixBits(9 + 0x13198a2eu), 0.2};
            const double apart = double(size.across) / size.width; // values blend where cells are closer
            for (int y = 0; y < size.height; ++y) {
                for (int x = 0; x < size.width; ++x) {
                    const std::array<double, 5> expected =
                        cellularAt(pointsAround((x + 0.5) / size.width * size.across,
                                                (y + 0.5) / size.height * size.down, lattice, size.jitter),
                                   metric);
                    for (int output = 0; output < 5; ++output) {
                        if (output == 3 && expected[2] < 1.01 * apart)
                            continue;
                        ASSERT_NEAR(pictures[output].at(x, y), expected[output], 1e-4)
                            << "output " << output << ", metric " << metric << ", pixel " << x << ' ' << y;
                    }
                }
            }
        }
    }
}

} // namespace vellor::nodes::test
