#include "platform/nodes/tests/noderunner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace vellor::nodes::test {

TEST(Scatter, ExactlyPlacedStampsAreThePicture)
{
    const Picture stamp = noise(64, 64, 1, 3), colour = noise(64, 64, 4, 5);
    Evaluation grey("scatter", 256, 128), inColour("scatter", 256, 128);
    for (Evaluation* run : {&grey, &inColour})
        run->set("tiles", {4, 2}).set("size", {1, 1}).skip();
    const Picture stamped = grey.operand(stamp)();
    const Picture turned = grey.set("rotation", {0.25})();
    inColour.set("backgroundcolour", {0, 0, 0, 0}).operand(colour);
    const Picture stampedColour = inColour();
    for (int y = 0; y < 128; ++y) {
        for (int x = 0; x < 256; ++x) {
            ASSERT_EQ(stamped.at(x, y), stamp.at(x, y)) << x << ' ' << y;
            ASSERT_NEAR(turned.at(x, y), stamp.at(y, 63 - x % 64), 2e-5f) << x << ' ' << y;
            for (int c = 0; c < 4; ++c)
                ASSERT_NEAR(stampedColour.at(x, y, c), colour.at(x, y, c), 1e-6f);
        }
    }
}

TEST(Scatter, CoversByFormula)
{
    const double pi = 3.14159265358979;
    Evaluation run("scatter", 256, 256);
    run.set("size", {0.8, 0.3}).set("rotationvariation", {1});
    EXPECT_NEAR(meanOf(run()), pi / 4 * 0.8 * 0.3, 0.002);
    // Far smaller than a pixel, and pictures that are read from their smallest halves.
    run.set("tiles", {64, 0}).set("size", {0.1, 0.1}).set("shape", {1}).set("ratio", {0});
    EXPECT_NEAR(meanOf(run()), 0.01, 0.002);
    Evaluation small("scatter", 256, 256);
    small.set("tiles", {64, 0}).set("size", {0.1, 0.1}).skip();
    small.operand(drawn(100, 100, [](float x, float) { return x < 0.5f ? 1.0f : 0.0f; }));
    EXPECT_NEAR(meanOf(small()), 0.005, 0.0001);
}

TEST(Scatter, MapsDropTurnMoveAndScale)
{
    const Picture black = drawn(16, 16, [](float, float) { return 0.0f; });
    const Picture half = drawn(16, 16, [](float, float) { return 0.5f; });
    const auto run = [&](int map, const Picture& picture) {
        Evaluation evaluation("scatter", 128, 128);
        evaluation.set("tiles", {2, 2}).set("size", {0.5, 0.25}).set("shape", {1}).set("ratio", {0});
        while (static_cast<int>(evaluation.operandCount()) < map)
            evaluation.skip();
        return evaluation.operand(picture)();
    };
    EXPECT_NEAR(meanOf(run(5, half)), 0.125 / 4, 1e-3); // half as large
    EXPECT_EQ(run(6, half).at(32, 32 - 15), 0.0f);      // half a turn
    EXPECT_EQ(meanOf(run(8, black)), 0.0);              // masked
    EXPECT_NEAR(meanOf(run(9, half)), 0.125 / 2, 1e-4); // half as light
    Picture right(16, 16, 4);
    for (int i = 0; i < 256; ++i) {
        right.at(i % 16, i / 16, 0) = 1.0f; // half a tile to the right
        right.at(i % 16, i / 16, 1) = 0.5f;
    }
    const Picture moved = run(7, right);
    EXPECT_EQ(moved.at(0, 32), 1.0f);
    EXPECT_EQ(moved.at(32, 32), 0.0f);
}

TEST(Scatter, LaterStampsCoverAcrossTheEdges)
{
    // Discs that overlap the row below: each row looks like the others, the first and the last too.
    const Picture scales = Evaluation("scatter", 64, 64)
                               .set("tiles", {4, 4})
                               .set("shape", {8})
                               .set("size", {1.5, 2})
                               .set("blend", {2})();
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            ASSERT_NEAR(scales.at(x, y), scales.at(x + 16, y + 16), 1e-5f) << x << ' ' << y;
}

TEST(FreeScatter, KeepsNumberDistanceAndDensity)
{
    Evaluation run("freescatter", 512, 512);
    // Middles are 0.7 / sqrt(300) = 0.0404 apart: discs of that width add up to no more than 1.
    run.set("number", {300}).set("spacing", {1}).set("size", {0.04, 0.04}).set("blend", {1});
    const Picture even = run();
    EXPECT_NEAR(meanOf(even), 300 * 3.14159265 * 0.02 * 0.02, 1e-3);
    float most = 0.0f;
    for (int i = 0; i < 512 * 512; ++i)
        most = std::max(most, even.at(i % 512, i / 512));
    EXPECT_LE(most, 1.0f);
    Evaluation uneven("freescatter", 512, 512);
    uneven.set("number", {3000}).set("size", {0.01, 0.01}).set("blend", {1});
    for (int i = 0; i < 10; ++i)
        uneven.skip();
    const Picture left =
        uneven.operand(drawn(64, 64, [](float x, float) { return x < 0.5f ? 1.0f : 0.2f; }))();
    double sums[2] = {};
    for (int y = 0; y < 512; ++y)
        for (int x = 0; x < 512; ++x)
            sums[x / 256] += left.at(x, y);
    EXPECT_NEAR(sums[1] / sums[0], 0.2, 0.08);
    EXPECT_NEAR(meanOf(Evaluation("freescatter", 512, 512)
                           .set("number", {100000})
                           .set("size", {0.0005, 0.0005})
                           .set("shape", {1})
                           .set("ratio", {0})
                           .set("blend", {1})()),
                100000 * 0.0005 * 0.0005, 0.005);
}

} // namespace vellor::nodes::test
