// What is computed, and that it does not depend on how the work is cut.

#include "platform/engines/cpu/tests/fakekinds.h"
#include "platform/engines/cpu/tests/programbuilder.h"
#include "platform/engines/cpu/tests/testhost.h"

#include <gtest/gtest.h>

#include <functional>

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
    for (const std::uint32_t flags : {0u, std::uint32_t(VELLOR_CPU_NO_FUSION)}) {
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

TEST(Evaluation, ComputesAgainOnlyWhatAChangeTouches)
{
    TestHost host(Diamond(4, 4).build.program);
    host.compute({200});
    counters().clear();
    host.compute({200});
    EXPECT_EQ(counters().ramp + counters().add + counters().spread + counters().sum, 0);
    EXPECT_EQ(host.completed, (std::vector<std::uint32_t>{0, 0}));

    host.setFloat(0, 7.0f); // read by the second "add" alone
    host.compute({200});
    EXPECT_EQ(counters().ramp, 0);
    EXPECT_EQ(counters().spread, 0);
    EXPECT_EQ(counters().add, 256);
    EXPECT_EQ(counters().sum, 256);
    EXPECT_EQ(host.floats(0)[0], Diamond::expected(0, 0, 16, 16, 7.0f));

    counters().clear();
    host.setFloat(0, 5.0f); // back to what is kept
    host.compute({200});
    EXPECT_EQ(counters().add, 0);

    const std::uint32_t seed[4] = {10};
    vellorHandlePushSetInput(host.handle(), 0, 1, VELLOR_TYPE_INTEGER, seed, nullptr);
    host.compute({200});
    EXPECT_EQ(counters().ramp, 256);
    EXPECT_EQ(host.floats(0)[0], Diamond::expected(0, 0, 16, 16, 5.0f) + 50.0f);
}

/// ramp -> add -> add (changed by input 0), all in one strip unless something asks for a picture in between.
ProgramBuilder chainOfThree()
{
    ProgramBuilder build;
    const int amount = build.inputValue(build.input(program::ValueType::Float));
    const int size = build.sizeValue(4, 4);
    const int first = build.node("add", size, {build.node("ramp", size)});
    const int last = build.node("add", size, {first});
    build.parameter(last, "amount", program::ParameterSource::Program, {}, amount);
    build.output(last, kGreyFloat);
    return build;
}

TEST(Evaluation, HintsKeepWhatLiesJustUpstream)
{
    for (const bool hinted : {false, true}) {
        TestHost host(chainOfThree().program);
        host.push({200});
        if (hinted) {
            EXPECT_EQ(vellorHandlePushSetInput(host.handle(), VELLOR_PUSH_HINT, 0, 0, nullptr, nullptr), 0u);
            host.push({200}, VELLOR_PUSH_HINT | VELLOR_PUSH_UIDS);
        }
        host.start();
        EXPECT_EQ(host.completed.size(), 1u);
        for (int change = 1; change <= 2; ++change) {
            counters().clear();
            host.setFloat(0, static_cast<float>(change));
            host.compute({200});
            // Without a hint the first change shows which input moves; from then on its surroundings are
            // kept.
            const bool kept = hinted || change == 2;
            EXPECT_EQ(counters().ramp, kept ? 0 : 256) << hinted << change;
            EXPECT_EQ(counters().add, kept ? 256 : 512) << hinted << change;
            EXPECT_EQ(host.floats(0)[17], ramp(1, 1) + static_cast<float>(change));
        }
    }
}

TEST(Evaluation, BringsOperandsToTheSizeOfTheirReader)
{
    struct Case
    {
        int fromWidth, fromHeight, toWidth, toHeight; // logarithms
        float first, second;                          // pixels (0, 0) and (1, 0)
    };
    // The ramp is x + 100 y. Wrapped interpolation from 2 x 1: 0 1 -> 0.25 0.25 0.75 0.75; means for smaller
    // ones.
    for (const Case& row : {Case{1, 0, 2, 0, 0.25f, 0.25f},
                            {2, 0, 1, 0, 0.5f, 2.5f},
                            {2, 1, 1, 0, 50.5f, 52.5f},
                            {0, 1, 1, 2, 25.0f, 25.0f},
                            {1, 1, 1, 1, 0.0f, 1.0f},
                            {3, 0, 1, 1, 1.5f, 5.5f}}) {
        ProgramBuilder build;
        const int ramp = build.node("ramp", build.sizeValue(row.fromWidth, row.fromHeight));
        build.output(build.node("add", build.sizeValue(row.toWidth, row.toHeight), {ramp}), kGreyFloat);
        TestHost host(build.program);
        host.compute({200});
        EXPECT_EQ(host.floats(0)[0], row.first) << row.fromWidth << row.fromHeight;
        EXPECT_EQ(host.floats(0)[1], row.second) << row.fromWidth << row.fromHeight;
    }
}

TEST(Evaluation, SizesFollowInputsWithinBounds)
{
    ProgramBuilder build;
    const int size = build.inputValue(build.input(program::ValueType::Int2, {3, 2}));
    build.output(build.node("add", program::kNone, {build.node("ramp", size)}), kGreyFloat);
    build.numericOutput(size);
    TestHost host(build.program);
    host.compute({200, 201});
    EXPECT_EQ(std::pair(host.textures[0].width, host.textures[0].height),
              (std::pair<std::uint16_t, std::uint16_t>(8, 4)));
    EXPECT_EQ(host.numbers[1], (program::Words{3, 2}));
    for (const auto& [log2, side] : {std::pair(-5, 1), {0, 1}, {5, 32}}) {
        const std::int32_t words[4] = {log2, 1};
        vellorHandlePushSetInput(host.handle(), 0, 0, VELLOR_TYPE_INTEGER2, words, nullptr);
        EXPECT_EQ(host.compute({200}), 0u);
        EXPECT_EQ(host.textures[0].width, side);
    }
    VellorOutputDesc desc{};
    vellorHandleGetOutputDesc(host.handle(), 0, &desc);
    EXPECT_EQ(desc.width, 0u);
}

TEST(Evaluation, TextsAndPixelProgramsFollowTheirInputs)
{
    ProgramBuilder build;
    const int size = build.sizeValue(0, 0);
    const int text = build.input(program::ValueType::String);
    const int read = build.input(program::ValueType::Float, {bitsOf(0.5f)});
    build.input(program::ValueType::Float); // read by nothing
    build.program.inputs[text].defaultText = U"x";
    const int letter = build.node("letter", size), constant = build.node("letter", size);
    build.parameter(letter, "text", program::ParameterSource::Input, {}, text);
    build.program.blobs.push_back({0xC3, 0xA9}); // U+00E9
    build.parameter(constant, "text", program::ParameterSource::Blob, {}, 0);
    program::ValueProgram pixel;
    pixel.perPixel = true;
    pixel.registerCount = 2;
    pixel.constants = {bitsOf(0.25f)};
    pixel.instructions = {{program::Op::Constant, 0, 0, 0, 0},
                          {program::Op::Input, 1, static_cast<std::uint16_t>(read), 0, 0}};
    const int program = build.node("program", size);
    build.parameter(program, "program", program::ParameterSource::Program, {}, build.add(pixel));
    for (const int node : {letter, constant, program})
        build.output(node, kGreyFloat);
    TestHost host(build.program);
    ASSERT_EQ(host.initResult(), 0u);
    host.compute({200, 201, 202});
    EXPECT_EQ(host.floats(0)[0], 120.0f);
    EXPECT_EQ(host.floats(1)[0], 233.0f);
    EXPECT_EQ(host.floats(2)[0], 0.75f);
    vellorHandlePushSetInput(host.handle(), 0, 0, VELLOR_TYPE_STRING, U"\U0001F600yz", nullptr);
    host.setFloat(1, 2.0f);
    host.compute({200, 202});
    EXPECT_EQ(host.floats(0)[0], 128512.0f);
    EXPECT_EQ(host.floats(2)[0], 2.25f);
}

TEST(Evaluation, RefusesNodesThatBreakTheirDeclaration)
{
    const auto refused = [](const std::function<void(ProgramBuilder&, int)>& spoil) {
        ProgramBuilder build;
        const int size = build.sizeValue(2, 2);
        const int add = build.node("add", size, {build.node("ramp", size)});
        build.output(add, kGreyFloat);
        spoil(build, add);
        return TestHost(build.program).initResult() == VELLOR_ERROR_INVALID_DATA;
    };
    EXPECT_FALSE(refused([](ProgramBuilder&, int) {}));
    EXPECT_TRUE(refused([](ProgramBuilder& build, int add) { build.program.nodes[add].kind = 1; }));
    EXPECT_TRUE(refused([](ProgramBuilder& build, int add) { build.program.nodes[add].operands = {}; }));
    EXPECT_TRUE(refused([](ProgramBuilder& build, int add) { build.program.nodes[add].operands = {0, 0}; }));
    EXPECT_TRUE(refused([](ProgramBuilder& build, int add) { build.program.nodes[add].channels = 4; }));
    EXPECT_TRUE(refused([](ProgramBuilder& build, int add) {
        build.program.blobs.push_back({});
        build.parameter(add, "amount", program::ParameterSource::Blob, {}, 0);
    }));
}

TEST(Evaluation, RunsOutOfMemoryWithACode)
{
    ProgramBuilder build;
    build.output(build.node("fail", build.sizeValue(2, 2)), kGreyFloat);
    build.output(build.node("ramp", build.sizeValue(2, 2)), kGreyFloat);
    TestHost host(build.program);
    EXPECT_EQ(host.compute({200}), static_cast<std::uint32_t>(VELLOR_ERROR_OUT_OF_MEMORY));
    EXPECT_TRUE(host.completed.empty());
    EXPECT_EQ(host.compute({201}), 0u);
    EXPECT_EQ(host.completed.size(), 1u);
}

} // namespace
} // namespace vellor::cpu::testing
