// What is computed, and that it does not depend on how the work is cut.

#include "platform/engines/cpu/tests/fakekinds.h"
#include "platform/engines/cpu/tests/programbuilder.h"
#include "platform/engines/cpu/tests/testhost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace vellor::cpu::testing {
namespace {

constexpr std::uint8_t kGreyFloat = VELLOR_FORMAT_GRAYSCALE | VELLOR_FORMAT_32FLOAT;
constexpr std::uint8_t kColourFloat = VELLOR_FORMAT_RGBA | VELLOR_FORMAT_32FLOAT;

float ramp(int x, int y)
{
    return static_cast<float>(x + 100 * y);
}

/// What "spread" makes of "ramp" + `offset`, by its definition.
float spreadOfRamp(int x, int y, int width, int height, float offset)
{
    const auto wrap = [](int v, int size) { return (v + size) % size; };
    return ramp(wrap(x - 1, width), y) + ramp(wrap(x + 1, width), y) + ramp(x, wrap(y - 1, height)) +
           ramp(x, wrap(y + 1, height)) + 4.0f * offset;
}

/// ramp -> add 3 -> spread -> add 5 -> sum with the first add; the result's value at a pixel in closed form.
struct Diamond
{
    ProgramBuilder build;
    int late, seed, first, spread, last, output, side;

    Diamond(int log2Width, int log2Height, std::uint8_t channels = 1)
    {
        late = build.input(program::ValueType::Float, {bitsOf(5.0f)});
        seed = build.input(program::ValueType::Int);
        const int size = build.sizeValue(log2Width, log2Height);
        const int ramp = build.node("ramp", size);
        build.program.nodes[ramp].channels = channels;
        build.program.nodes[ramp].seed = build.inputValue(seed);
        first = build.node("add", size, {ramp});
        build.constant(first, "amount", 3.0f);
        spread = build.node("spread", size, {first});
        const int add = build.node("add", size, {spread});
        build.parameter(add, "amount", program::ParameterSource::Program, {}, build.inputValue(late));
        last = build.node("sum", size, {add, first});
        output = build.output(last, channels == 1 ? kGreyFloat : kColourFloat);
        side = build.output(first, channels == 1 ? kGreyFloat : kColourFloat);
    }

    static float expected(int x, int y, int width, int height, float lateValue)
    {
        return spreadOfRamp(x, y, width, height, 3.0f) + lateValue + ramp(x, y) + 3.0f;
    }
};

TEST(Evaluation, GivesTheValuesOfTheDefinition)
{
    for (const auto& [log2Width, log2Height] : {std::pair(4, 3), {0, 0}, {0, 5}, {6, 0}, {5, 6}}) {
        TestHost host(Diamond(log2Width, log2Height).build.program);
        ASSERT_EQ(host.initResult(), 0u);
        EXPECT_EQ(host.compute({200}), 0u);
        const int width = 1 << log2Width, height = 1 << log2Height;
        const std::vector<float> got = host.floats(0);
        ASSERT_EQ(got.size(), static_cast<std::size_t>(width * height));
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                ASSERT_EQ(got[y * width + x], Diamond::expected(x, y, width, height, 5.0f)) << x << " " << y;
    }
}

TEST(Evaluation, GivesTheSameBytesHoweverTheWorkIsCut)
{
    const Diamond diamond(11, 4, 4);
    std::vector<std::uint8_t> reference;
    for (const std::uint32_t flags : {0u, Resources::kNoFusion}) {
        for (const std::uint32_t threads : {1u, 2u, 5u}) {
            for (const std::uint32_t rows : {0u, 1u, 7u, 64u}) {
                Resources resources;
                resources.threads = threads;
                resources.chunkRows = rows;
                resources.flags = flags;
                TestHost host(diamond.build.program, resources);
                ASSERT_EQ(host.compute({200}), 0u);
                if (reference.empty())
                    reference = host.pictures[0];
                ASSERT_EQ(host.pictures[0], reference)
                    << threads << " threads, " << rows << " rows, " << flags;
                EXPECT_EQ(host.foreignThread, 0);
            }
        }
    }
    float value = 0.0f;
    std::memcpy(&value, reference.data() + 16 * (2 * 2048 + 1030) + 8, 4); // blue of pixel (1030, 2)
    EXPECT_EQ(value, Diamond::expected(1030, 2, 2048, 16, 5.0f) + 5 * 0.5f);
}

TEST(Evaluation, FusesPointNodesAndComputesOnlyWhatIsWanted)
{
    TestHost host(Diamond(4, 4).build.program);
    counters().clear();
    host.compute({201});
    EXPECT_EQ(counters().ramp, 256);
    EXPECT_EQ(counters().add, 256);
    EXPECT_EQ(counters().spread, 0);
    EXPECT_EQ(counters().sum, 0);
}

} // namespace
} // namespace vellor::cpu::testing
