#include "platform/nodes/pictureblob.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"
#include "platform/nodes/tests/noderunner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>

namespace vellor::nodes::test {

namespace {

/// The largest step between neighbours across the picture's edges, by the largest one within.
double seamOf(const Picture& picture)
{
    double across = 0.0, within = 1e-6;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const double dx = std::fabs(picture.at(x + 1, y) - picture.at(x, y));
            const double dy = std::fabs(picture.at(x, y + 1) - picture.at(x, y));
            double& right = x + 1 == picture.width() ? across : within;
            double& below = y + 1 == picture.height() ? across : within;
            right = std::max(right, dx);
            below = std::max(below, dy);
        }
    }
    return across / within;
}

/// A picture reduced to a quarter of its size by averaging.
Picture reduced(const Picture& picture, int by)
{
    Picture small(picture.width() / by, picture.height() / by);
    for (int y = 0; y < small.height(); ++y) {
        for (int x = 0; x < small.width(); ++x) {
            double sum = 0.0;
            for (int i = 0; i < by * by; ++i)
                sum += picture.at(x * by + i % by, y * by + i / by);
            small.at(x, y) = static_cast<float>(sum / (by * by));
        }
    }
    return small;
}

double meanDifference(const Picture& a, const Picture& b)
{
    double sum = 0.0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            sum += std::fabs(a.at(x, y) - b.at(x, y));
    return sum / (double(a.width()) * a.height());
}

struct PatternCase
{
    const char* kind;
    std::function<void(Evaluation&)> change;
};

const PatternCase kPatterns[] = {
    {"perlin", [](Evaluation&) {}},
    {"perlin",
     [](Evaluation& run) {
         run.set("scale", {3, 7}).set("mode", {1}).set("evolution", {0.3});
     }},
    {"simplex",
     [](Evaluation& run) {
         run.set("scale", {5, 0}).set("octaves", {3});
     }},
    {"valuenoise",
     [](Evaluation& run) {
         run.set("scale", {4, 3}).set("warp", {0.5}).set("warpscale", {3, 0});
     }},
    {"cellular", [](Evaluation& run) { run.set("output", {2}); }},
    {"cellular",
     [](Evaluation& run) {
         run.set("octaves", {3}).set("metric", {1}).set("scale", {5, 3});
     }},
    {"brick", [](Evaluation& run) { run.set("offset", {0.37}).set("offsetvariation", {0.5}); }},
    {"tile",
     [](Evaluation& run) {
         run.set("positionvariation", {1}).set("rotationvariation", {1}).set("offset", {0.3});
     }},
    {"tile",
     [](Evaluation& run) {
         run.set("shape", {7}).set("size", {1.8, 1.8}).set("layering", {2}).set("offset", {0.5});
     }},
    {"scatter",
     [](Evaluation& run) {
         run.set("tiles", {5, 3})
             .set("size", {2, 1.3})
             .set("rotationvariation", {1})
             .set("valuevariation", {0.5})
             .set("blend", {2})
             .set("shape", {7});
     }},
    {"freescatter",
     [](Evaluation& run) {
         run.set("number", {60}).set("size", {0.3, 0.1}).set("rotationvariation", {1}).set("shape", {6});
     }},
    {"hexagons",
     [](Evaluation& run) {
         run.set("tiles", {5, 0});
     }},
    {"herringbone", [](Evaluation& run) { run.set("length", {3}); }},
    {"herringbone", [](Evaluation& run) { run.set("orientation", {1}).set("length", {4}); }},
    {"basketweave", [](Evaluation&) {}},
    {"cracks", [](Evaluation& run) { run.set("output", {2}); }},
    {"knit",
     [](Evaluation& run) {
         run.set("stitches", {5, 0}).set("variation", {1});
     }},
    {"knit",
     [](Evaluation& run) {
         run.set("stitches", {5, 0}).set("variation", {1}).set("stitch", {5});
     }},
    {"stripes",
     [](Evaluation& run) {
         run.set("repeats", {3, 2}).set("softness", {0.5});
     }},
    {"dots", [](Evaluation& run) { run.set("arrangement", {1}).set("profile", {2}); }},
    {"reflectedgradient",
     [](Evaluation& run) {
         run.set("repeats", {3, -2});
     }},
    {"weave", [](Evaluation& run) { run.set("pattern", {3}); }},
    {"weave", [](Evaluation& run) { run.set("pattern", {6}); }},
    {"checker", [](Evaluation& run) { run.set("diagonal", {1}); }},
    {"shape",
     [](Evaluation& run) {
         run.set("tiles", {3, 0}).set("size", {1.5, 0.4}).set("rotation", {0.1});
     }},
    {"lineargradient",
     [](Evaluation& run) {
         run.set("repeats", {2, 3}).set("profile", {3});
     }},
};

TEST(Bitmap, KeepsPixelsAveragesAndInterpolates)
{
    std::vector<std::uint8_t> rows;
    for (int i = 0; i < 8 * 4; ++i)
        rows.push_back(static_cast<std::uint8_t>(i * 8));
    const std::vector<std::uint8_t> blob = PictureBlob::make(8, 4, 1, 8, rows);
    const auto at = [&](int x, int y) { return rows[wrapped(y, 4) * 8 + wrapped(x, 8)] / 255.0f; };
    const auto sized = [&](int width, int height) {
        return Evaluation("bitmap", width, height).setBytes("picture", blob)();
    };
    const Picture same = sized(8, 4), half = sized(4, 1), twice = sized(16, 4);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 8; ++x) {
            EXPECT_FLOAT_EQ(same.at(x, y), at(x, y));
            // A quarter of a pixel to the right of the middle.
            const float t = 0.25f,
                        cubic = 0.5f *
                                (((2 - t) * t - 1) * t * at(x - 1, y) + ((3 * t - 5) * t * t + 2) * at(x, y) +
                                 ((4 - 3 * t) * t + 1) * t * at(x + 1, y) + (t - 1) * t * t * at(x + 2, y));
            EXPECT_NEAR(twice.at(2 * x + 1, y), cubic, 1e-6f);
        }
    for (int x = 0; x < 4; ++x) {
        float sum = 0;
        for (int y = 0; y < 4; ++y)
            sum += at(2 * x, y) + at(2 * x + 1, y);
        EXPECT_NEAR(half.at(x, 0), sum / 8, 1e-6f);
    }
}

} // namespace

TEST(Patterns, TileWithoutSeams)
{
    for (const PatternCase& row : kPatterns) {
        for (const int height : {96, 48, 33}) {
            Evaluation run(row.kind, 96, height);
            row.change(run);
            EXPECT_LE(seamOf(run.seed(4)()), 1.5) << row.kind << " at height " << height;
        }
    }
}

TEST(Patterns, LookAlikeAtEverySize)
{
    for (const PatternCase& row : kPatterns) {
        Evaluation large(row.kind, 512, 512), small(row.kind, 128, 128);
        row.change(large);
        row.change(small);
        EXPECT_LT(meanDifference(reduced(large(), 4), small()), 0.03) << row.kind;
    }
}

TEST(Patterns, SeedsDiffer)
{
    for (const char* kind : {"perlin", "simplex", "valuenoise", "cellular", "whitenoise", "brick", "tile",
                             "weave", "hexagons", "herringbone", "basketweave", "knit", "cracks"}) {
        Evaluation run(kind, 32, 32);
        EXPECT_FALSE(run.seed(1)() == run.seed(2)()) << kind;
        EXPECT_TRUE(run.seed(2)() == run.seed(2)()) << kind;
    }
}

TEST(Knit, TellsTheStitchThatShows)
{
    const auto drawnAs = [](double output) {
        return Evaluation("knit", 160, 120).set("stitches", {5, 4}).set("output", {output})();
    };
    const Picture mask = drawnAs(1), column = drawnAs(6), row = drawnAs(7);
    int met[5][4] = {};
    for (int i = 0; i < 160 * 120; ++i) {
        const int x = i % 160, y = i / 160;
        if (mask.at(x, y) < 0.99f)
            continue;
        const int c = std::lround(column.at(x, y) * 5 - 0.5), r = std::lround(row.at(x, y) * 4 - 0.5);
        EXPECT_NEAR(column.at(x, y), (c + 0.5) / 5, 1e-6);
        EXPECT_NEAR(row.at(x, y), (r + 0.5) / 4, 1e-6);
        ++met[c][r];
        // A leg stays within a stitch of its own, around the edges.
        EXPECT_LT(std::fabs(std::remainder((x + 0.5) / 32 - c - 0.5, 5.0)), 0.75) << x << ' ' << y;
        EXPECT_LT(std::fabs(std::remainder((y + 0.5) / 30 - r - 0.5, 4.0)), 1.25) << x << ' ' << y;
    }
    for (const auto& counts : met)
        for (const int count : counts)
            EXPECT_GT(count, 160 * 120 / 20 / 2);
}

TEST(Knit, WindsPliesLikeAScrewAlongTheYarn)
{
    const double columns = 4, rows = 4, turns = 1.5;
    for (const bool purled : {false, true}) {
        const auto drawnAs = [&](double output) {
            return Evaluation("knit", 320, 320)
                .set("stitches", {columns, rows})
                .set("variation", {0})
                .set("twist", {0})
                .set("turns", {turns})
                .set("stitch", {purled ? 1.0 : 0.0})
                .set("output", {output})();
        };
        const Picture mask = drawnAs(1), v = drawnAs(4), column = drawnAs(6), row = drawnAs(7),
                      along = drawnAs(8), around = drawnAs(9);
        std::optional<double> starts[4];
        int met = 0, wound = 0;
        for (int i = 0; i < 320 * 320; ++i) {
            const int x = i % 320, y = i / 320;
            const double across = 2 * v.at(x, y) - 1;
            if (mask.at(x, y) < 0.99f || std::fabs(across) > 0.8)
                continue;
            EXPECT_NEAR(along.at(x, y), column.at(x, y), 0.5 / columns + 1e-6);
            // v goes outwards on knit stitches, against the yarn's left, and down on purl stitches.
            const double aside = std::asin(across) / (2 * std::acos(-1.0));
            const double start =
                around.at(x, y) - turns * columns * along.at(x, y) + (purled ? -aside : aside);
            std::optional<double>& first = starts[std::lround(row.at(x, y) * rows - 0.5)];
            first = first.value_or(start);
            wound += std::fabs(std::remainder(start - *first, 1.0)) < 0.03;
            ++met;
        }
        // Pixels where a yarn lies over another mix their v.
        EXPECT_GT(wound, 0.9 * met) << purled;
        EXPECT_GT(met, 320 * 320 / 2);
    }
}

TEST(Knit, LeavesNoHolesToSpeakOf)
{
    for (int stitch = 0; stitch < 6; ++stitch) {
        const Picture mask = Evaluation("knit", 256, 256)
                                 .set("stitches", {8, 0})
                                 .set("stitch", {double(stitch)})
                                 .set("output", {1})();
        double open = 0;
        for (int i = 0; i < 256 * 256; ++i)
            open += 1 - mask.at(i % 256, i / 256);
        EXPECT_LT(open / (256 * 256), 0.03) << stitch;
    }
}

TEST(Knit, PurlsWhereThePatternSaysSo)
{
    // By stitch, row and column: stockinette, reverse, rib1, rib2, garter, seed. Eight columns hold whole
    // repeats.
    const std::function<bool(int, int)> purled[] = {
        [](int, int) { return false; },        [](int, int) { return true; },
        [](int, int x) { return x % 2 == 1; }, [](int, int x) { return x / 2 % 2 == 1; },
        [](int y, int) { return y % 2 == 1; }, [](int y, int x) { return (x + y) % 2 == 1; }};
    for (int stitch = 0; stitch < 6; ++stitch) {
        const auto drawnAs = [&](double output) {
            return Evaluation("knit", 256, 256)
                .set("stitches", {8, 8})
                .set("variation", {0})
                .set("stitch", {double(stitch)})
                .set("output", {output})();
        };
        const Picture mask = drawnAs(1), direction = drawnAs(5), column = drawnAs(6), row = drawnAs(7);
        int lying[8][8] = {}, met[8][8] = {};
        for (int y = 0; y < 256; ++y)
            for (int x = 0; x < 256; ++x) {
                if (mask.at(x, y) < 0.99f)
                    continue;
                const int r = std::lround(row.at(x, y) * 8 - 0.5), c = std::lround(column.at(x, y) * 8 - 0.5);
                lying[r][c] += std::fabs(direction.at(x, y) - 0.5f) > 0.3f;
                ++met[r][c];
            }
        for (int r = 0; r < 8; ++r)
            for (int c = 0; c < 8; ++c) {
                ASSERT_GT(met[r][c], 32 * 32 / 4) << stitch;
                EXPECT_NEAR(double(lying[r][c]) / met[r][c], purled[stitch](r, c) ? 1 : 0, 0.12)
                    << stitch << ' ' << r << ' ' << c;
            }
    }
}

TEST(Perlin, IsHalfOnLatticePointsAndLoops)
{
    // Cells of an odd number of pixels have lattice points between pixels: with cells of two, the mean of the
    // four pixels around one is 0.5 up to the curve of the noise; with many pixels a cell it comes close.
    const Picture fine = Evaluation("perlin", 512, 512).set("scale", {4, 4}).set("octaves", {1})();
    for (int y = 0; y < 512; y += 128) {
        for (int x = 0; x < 512; x += 128) {
            const float around =
                fine.at(x, y) + fine.at(x - 1, y) + fine.at(x, y - 1) + fine.at(x - 1, y - 1);
            EXPECT_NEAR(around / 4.0f, 0.5f, 1e-3f) << x << ' ' << y;
        }
    }
    Evaluation run("perlin", 64, 64);
    const Picture start = run.set("evolution", {0.0})(), middle = run.set("evolution", {0.5})();
    EXPECT_TRUE(run.set("evolution", {1.0})() == start);
    EXPECT_GT(meanDifference(start, middle), 0.02);
}

TEST(Shape, AreasAreTrue)
{
    struct Case
    {
        int shape;
        double area; // of a shape of full size in a square of side 2, by 4
    };
    const double pi = 3.14159265358979;
    const Case cases[] = {
        {0, pi / 4},
        {1, (4 - 0.16 * (4 - pi)) / 4},
        {2, 6 * 0.5 * std::sin(pi / 3) / 4},
        {3, 6 * 0.4 * std::sin(pi / 6) / 4},
        {4, pi * (1 - 0.36) / 4},
        {5, (0.16 * pi + 1.2 * 0.8) / 4},
    };
    for (const Case& row : cases) {
        const Picture picture = Evaluation("shape", 256, 256)
                                    .set("shape", {double(row.shape)})
                                    .set("size", {1, 1})
                                    .set("ratio", {0.4})
                                    .set("sides", {6})();
        EXPECT_NEAR(meanOf(picture), row.area, 0.004) << row.shape;
    }
}

TEST(Brick, CountsAndMortar)
{
    const Picture mask = Evaluation("brick", 256, 256)
                             .set("bricks", {4, 8})
                             .set("mortar", {0.25})
                             .set("rounding", {0})
                             .set("output", {1})();
    // A brick is 2 by 1 in heights, a quarter goes for mortar both ways.
    EXPECT_NEAR(meanOf(mask), (1.75 * 0.75) / 2.0, 0.003);
    EXPECT_EQ(mask.at(32, 16), 1.0f);
    EXPECT_EQ(mask.at(0, 16), 0.0f);
    EXPECT_EQ(mask.at(0, 48), 1.0f); // shifted by half a brick
    const Picture u = Evaluation("brick", 256, 256).set("output", {3})();
    EXPECT_LT(u.at(1, 16), u.at(60, 16));
}

TEST(Blocks, CoverByFormula)
{
    const auto share = [](const char* kind, const char* name, double value) {
        return meanOf(Evaluation(kind, 256, 256)
                          .set("mortar", {0.2})
                          .set("rounding", {0})
                          .set("output", {1})
                          .set(name, {value, 0})());
    };
    EXPECT_NEAR(share("hexagons", "tiles", 7), 0.8 * 0.8, 0.005);
    EXPECT_NEAR(share("herringbone", "orientation", 0), 4.8 * 0.8 / 5, 0.005);
    EXPECT_NEAR(share("herringbone", "orientation", 1), 4.8 * 0.8 / 5, 0.005);
    EXPECT_NEAR(share("basketweave", "tiles", 4), 2.8 * 0.8 / 3, 0.005);
    EXPECT_NEAR(meanOf(Evaluation("stripes", 64, 64).set("repeats", {37, 11}).set("width", {0.3})()), 0.3,
                1e-3);
    EXPECT_NEAR(meanOf(Evaluation("dots", 256, 256)()), 3.14159265 * 0.3 * 0.3, 0.002);
}

TEST(Weave, FloatsAreAsLongAsTheirPatternSays)
{
    struct Case
    {
        double pattern, threads, vertical; // share of crossings where the vertical thread is on top
    };
    for (const Case& row :
         {Case{0, 4, 0.5}, Case{1, 4, 0.5}, Case{2, 4, 0.5}, Case{3, 5, 0.8}, Case{4, 4, 0.75},
          Case{5, 4, 0.25}, Case{6, 8, 0.5}, Case{7, 5, 0.2}, Case{8, 8, 0.875}}) {
        const int threads = int(row.threads), size = 16 * threads;
        Evaluation run("weave", size, size);
        run.set("threads", {row.threads, row.threads}).set("pattern", {row.pattern});
        const Picture direction = run.set("output", {3})(), u = run.set("output", {4})();
        double vertical = 0;
        for (int j = 0; j < threads; ++j) {
            for (int i = 0; i < threads; ++i) {
                const int x = 16 * i + 8, y = 16 * j + 8;
                const bool down = direction.at(x, y) == 1.0f;
                vertical += down;
                // From crossing to crossing u rises by one in the float's length, or starts again.
                const float here = u.at(x, y), next = down ? u.at(x, y + 16) : u.at(x + 16, y);
                const bool on = direction.at(down ? x : x + 16, down ? y + 16 : y) == (down ? 1.0f : 0.0f);
                int length = 1;
                for (int side : {-1, 1})
                    for (int k = side;
                         std::abs(k) < threads &&
                         direction.at(down ? x : x + 16 * k, down ? y + 16 * k : y) == (down ? 1.0f : 0.0f);
                         k += side)
                        ++length;
                if (on)
                    EXPECT_NEAR(next - here, 1.0f / length, 1e-4f) << row.pattern << ": " << i << ' ' << j;
                else
                    EXPECT_NEAR(here, 1.0f - 0.5f / length, 0.04f) << row.pattern << ": " << i << ' ' << j;
            }
        }
        EXPECT_NEAR(vertical / (threads * threads), row.vertical, 1e-9) << row.pattern;
    }
}

TEST(Gradients, KnownValues)
{
    const Picture ramp = Evaluation("lineargradient", 64, 64)();
    EXPECT_FLOAT_EQ(ramp.at(10, 5), 10.5f / 64.0f);
    const Picture radial = Evaluation("radialgradient", 64, 64).set("centre", {0, 0})();
    EXPECT_NEAR(radial.at(0, 0), radial.at(-1, -1), 1e-6f);
    const Picture angular = Evaluation("angulargradient", 64, 64)();
    EXPECT_NEAR(angular.at(48, 48), 0.125f, 1e-5f);
    EXPECT_NEAR(angular.at(15, 15), 0.625f, 1e-5f);
    EXPECT_FLOAT_EQ(Evaluation("reflectedgradient", 64, 64)().at(47, 3), 1.0f - 31.0f / 64.0f);
    EXPECT_NEAR(radial.at(15, 0), 1.0f - std::hypot(15.5f, 0.5f) / 32.0f, 1e-6f);
}

TEST(Text, DrawsWhereItShould)
{
    // An I is one stroke as high as a capital, in the middle; its pen is an eighth of its height wide.
    const Picture one = Evaluation("text", 128, 128)
                            .setText("text", U"I")
                            .set("size", {0.5})
                            .set("thickness", {0.125})
                            .set("alignment", {0})();
    EXPECT_EQ(one.at(64, 64), 1.0f);
    EXPECT_EQ(one.at(64, 34), 1.0f);
    EXPECT_EQ(one.at(64, 20), 0.0f);
    EXPECT_EQ(one.at(75, 64), 0.0f);
    EXPECT_NEAR(meanOf(one) * 128 * 128, 64 * 8 + 3.14159 * 16, 3.0);
    EXPECT_EQ(meanOf(Evaluation("text", 64, 64)()), 0.0);
    EXPECT_GT(meanOf(Evaluation("text", 64, 64).setText("text", U"\u4e2d")()), 0.0);
}

} // namespace vellor::nodes::test
