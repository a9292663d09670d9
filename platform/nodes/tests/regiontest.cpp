#include "platform/nodes/tests/noderunner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <queue>
#include <set>

namespace vellor::nodes::test {

namespace {

struct Found
{
    int minX = 0, maxX = 0, minY = 0, maxY = 0; // unwrapped
    int pixels = 0;
    bool aroundX = false, aroundY = false;
};

/// Regions by walking from pixel to neighbouring pixel, without taking turns around the picture back. Gives
/// each pixel the number of its region, -1 outside.
std::vector<Found> walk(const Picture& mask, bool diagonal, std::vector<int>& labels)
{
    const int w = mask.width(), h = mask.height();
    std::vector<Found> regions;
    labels.assign(std::size_t(w) * h, -1);
    std::vector<std::pair<int, int>> places(labels.size()); // unwrapped
    for (int first = 0; first < w * h; ++first) {
        if (labels[first] >= 0 || mask.at(first % w, first / w) < 0.5f)
            continue;
        const int label = static_cast<int>(regions.size());
        Found region{first % w, first % w, first / w, first / w, 0, false, false};
        std::queue<int> next;
        next.push(first);
        labels[first] = label;
        places[first] = {first % w, first / w};
        for (; !next.empty(); next.pop()) {
            const auto [x, y] = places[next.front()];
            ++region.pixels;
            for (int d = 0; d < 9; ++d) {
                const int nx = x + d % 3 - 1, ny = y + d / 3 - 1;
                const int at = ((ny % h + h) % h) * w + (nx % w + w) % w;
                if ((!diagonal && nx != x && ny != y) || mask.at(nx, ny) < 0.5f)
                    continue;
                if (labels[at] == label) {
                    region.aroundX |= places[at].first != nx;
                    region.aroundY |= places[at].second != ny;
                    continue;
                }
                labels[at] = label;
                places[at] = {nx, ny};
                region.minX = std::min(region.minX, nx);
                region.maxX = std::max(region.maxX, nx);
                region.minY = std::min(region.minY, ny);
                region.maxY = std::max(region.maxY, ny);
                next.push(at);
            }
        }
        regions.push_back(region);
    }
    return regions;
}

void expectRegions(const Picture& mask, bool diagonal)
{
    const int w = mask.width(), h = mask.height();
    std::vector<int> labels;
    const std::vector<Found> regions = walk(mask, diagonal, labels);
    const Picture out = Evaluation("floodfill", w, h).set("diagonal", {double(diagonal)}).operand(mask)();
    ASSERT_TRUE(
        Evaluation("floodfill", w, h).set("diagonal", {double(diagonal)}).operand(mask).split(9, 3)() == out);
    for (int i = 0; i < w * h; ++i) {
        const int x = i % w, y = i / w;
        if (labels[i] < 0) {
            for (int c = 0; c < 4; ++c)
                ASSERT_EQ(out.at(x, y, c), 0.0f);
            continue;
        }
        const Found& region = regions[labels[i]];
        const bool aroundX = region.aroundX || region.maxX - region.minX >= w;
        const bool aroundY = region.aroundY || region.maxY - region.minY >= h;
        const int width = aroundX ? w : region.maxX - region.minX + 1;
        const int height = aroundY ? h : region.maxY - region.minY + 1;
        const int left = aroundX ? 0 : region.minX, top = aroundY ? 0 : region.minY;
        ASSERT_EQ(std::floor(out.at(x, y, 2)), width) << x << ' ' << y;
        ASSERT_EQ(std::floor(out.at(x, y, 3)), height) << x << ' ' << y;
        ASSERT_NEAR(out.at(x, y, 0), ((x - left + w) % w + 0.5) / width, 1e-6) << x << ' ' << y;
        ASSERT_NEAR(out.at(x, y, 1), ((y - top + h) % h + 0.5) / height, 1e-6) << x << ' ' << y;
        const double root = (out.at(x, y, 2) - width) * 1024.0 / 1023.0;
        ASSERT_NEAR(root, std::sqrt(double(region.pixels) / (double(width) * height)), 6e-4);
    }
}

Picture ofRows(const std::vector<std::string>& rows)
{
    Picture mask(static_cast<int>(rows[0].size()), static_cast<int>(rows.size()));
    for (int y = 0; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x)
            mask.at(x, y) = rows[y][x] == '#' ? 1.0f : 0.0f;
    return mask;
}

} // namespace

TEST(FloodFill, FindsWhatWalkingFinds)
{
    const std::vector<std::vector<std::string>> drawings = {
        {"#"},
        {"."},
        {"#..##"},
        {"#", ".", "#"},
        {"##..#", ".....", "..#..", "##.##"},          // around corners
        {".....", "#####", ".....", "..#.."},          // a bar that meets itself
        {"#....", "#...#", "...##", "..##.", ".##.."}, // a stair across the side
        {"#.#.#.", ".#.#.#", "#.#.#.", ".#.#.#"},      // corners alone
        {"########", ".......#", "######.#", "#....#.#", "#.##.#.#", "#.####.#", "#......#", "########"},
    };
    for (const std::vector<std::string>& rows : drawings)
        for (const bool diagonal : {false, true})
            expectRegions(ofRows(rows), diagonal);
    for (const double share : {0.2, 0.5, 0.6, 0.7}) {
        for (const int width : {150, 64, 33, 1}) {
            Picture mask = noise(width, 41, 1, unsigned(width));
            for (int i = 0; i < width * 41; ++i)
                mask.at(i % width, i / width) = mask.at(i % width, i / width) < share ? 1.0f : 0.0f;
            expectRegions(mask, false);
            expectRegions(mask, true);
        }
    }
}

namespace {

/// Four bricks across and eight down, set in by half a brick every other row.
Picture bricks(int size)
{
    return drawn(size, size, [](float x, float y) {
        const float row = std::floor(y * 8), down = y * 8 - row;
        float across = x * 4 + (int(row) % 2 ? 0.5f : 0.0f);
        across -= std::floor(across);
        return across > 0.06f && across < 0.94f && down > 0.1f && down < 0.9f ? 1.0f : 0.0f;
    });
}

/// The value at the middle of brick (column, row).
float brickValue(const Picture& picture, int column, int row, int channel = 0)
{
    const int size = picture.width();
    return picture.at(size * (4 * column + 2) / 16 - (row % 2 ? size / 8 : 0), size * (2 * row + 1) / 16,
                      channel);
}

} // namespace

TEST(Regions, AreOneValueEachAtAnyResolution)
{
    const Picture mask = bricks(256), larger = bricks(512);
    const Picture regions = Evaluation("floodfill", 256, 256).operand(mask)(),
                  finer = Evaluation("floodfill", 512, 512).operand(larger)();
    for (const char* kind : {"regiongrey", "regioncolour", "regionsize", "regionposition"}) {
        const Picture out = Evaluation(kind, 256, 256, 4).seed(5).operand(regions)(),
                      fine = Evaluation(kind, 512, 512, 4).seed(5).operand(finer)();
        std::set<float> values;
        for (int row = 0; row < 8; ++row) {
            for (int column = 0; column < 4; ++column) {
                const float value = brickValue(out, column, row);
                values.insert(value);
                EXPECT_NEAR(brickValue(fine, column, row), value, 0.01) << kind << column << row;
            }
        }
        std::set<float> all;
        for (int i = 0; i < 256 * 256; ++i)
            if (mask.at(i % 256, i / 256) > 0.5f)
                all.insert(out.at(i % 256, i / 256));
        EXPECT_EQ(all, values) << kind;
        if (kind == std::string("regiongrey") || kind == std::string("regioncolour")) {
            EXPECT_GT(values.size(), 28u) << kind;
        }
    }
}

TEST(Regions, TellSizesPlacesAndRamps)
{
    // One box of 40 x 20 pixels with a corner of 10 x 10 missing, across the left edge.
    Picture mask = drawn(200, 100, [](float, float) { return 0.0f; });
    for (int y = 30; y < 50; ++y)
        for (int x = -25; x < 15; ++x)
            mask.at(x, y) = x < 5 || y < 40 ? 1.0f : 0.0f;
    const Picture regions = Evaluation("floodfill", 200, 100).operand(mask)();
    const double sizes[] = {std::sqrt(700.0), 40, 20, 40, 20};
    for (int measure = 0; measure < 5; ++measure)
        EXPECT_NEAR(Evaluation("regionsize", 200, 100)
                        .set("measure", {double(measure)})
                        .set("high", {1})
                        .operand(regions)()
                        .at(-3, 33),
                    sizes[measure] / 200, 3e-4)
            << measure;
    const Picture place = Evaluation("regionposition", 200, 100, 4).operand(regions)();
    for (const int x : {-25, -1, 0, 14}) {
        EXPECT_NEAR(place.at(x, 35, 0), 195.0 / 200, 1e-6);
        EXPECT_NEAR(place.at(x, 35, 1), 0.4, 1e-6);
    }
    const Picture across = Evaluation("regiongradient", 200, 100).operand(regions)(),
                  slanting = Evaluation("regiongradient", 200, 100).set("angle", {0.125}).operand(regions)();
    EXPECT_NEAR(across.at(-10, 45), 15.5 / 40, 1e-6);
    EXPECT_NEAR(slanting.at(-10, 45), ((15.5 - 20) + (15.5 - 10)) / 60 + 0.5, 1e-6);
    EXPECT_EQ(across.at(100, 45), 0.0f);
}

} // namespace vellor::nodes::test
