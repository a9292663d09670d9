// The memory budget, the host's cache store, and results that move from handle to handle.

#include "platform/engines/cpu/entrypoints.h"
#include "platform/engines/cpu/handle.h"
#include "platform/engines/cpu/tests/fakekinds.h"
#include "platform/engines/cpu/tests/programbuilder.h"
#include "platform/engines/cpu/tests/testhost.h"

#include <gtest/gtest.h>

namespace vellor::cpu::testing {
namespace {

constexpr std::uint8_t kGreyFloat = VELLOR_FORMAT_GRAYSCALE | VELLOR_FORMAT_32FLOAT;
constexpr std::uint64_t kPicture = 256 * 256 * 4;

/// Eight outputs of 256 x 256: picture i is spread(ramp + i).
ProgramBuilder eightPictures()
{
    ProgramBuilder build;
    const int size = build.sizeValue(8, 8);
    const int ramp = build.node("ramp", size);
    for (int i = 0; i < 8; ++i) {
        const int add = build.node("add", size, {ramp});
        build.constant(add, "amount", static_cast<float>(i));
        build.output(build.node("spread", size, {add}), kGreyFloat);
    }
    return build;
}

float expected(int i)
{
    // Pixel (1, 1): 0 + 2 to the sides, 0 and 2 rows of 100 above and below, x = 1 twice.
    return 100.0f + 102.0f + 1.0f + 201.0f + 4.0f * static_cast<float>(i);
}

Resources withBudget(std::uint64_t pictures)
{
    Resources resources;
    resources.memoryBudget = pictures * kPicture + kPicture / 2;
    return resources;
}

TEST(Store, ParksWithTheHostAndReadsBack)
{
    TestHost host(eightPictures().program, withBudget(5));
    for (std::uint32_t i = 0; i < 8; ++i) {
        host.compute({200 + i});
        EXPECT_EQ(host.floats(i)[257], expected(static_cast<int>(i)));
        EXPECT_LE(host.handle()->liveBytes(), withBudget(5).memoryBudget);
    }
    EXPECT_GT(host.parked, 0);
    counters().clear();
    for (std::uint32_t i = 0; i < 8; ++i) {
        host.compute({200 + i});
        EXPECT_EQ(host.floats(i)[257], expected(static_cast<int>(i)));
    }
    EXPECT_GT(host.readBack, 0);
    EXPECT_EQ(counters().spread, 0) << "nothing is computed twice";
    EXPECT_EQ(host.fetchErrors, 0);
}

TEST(Store, ComputesAgainWhatAnOldBudgetDropped)
{
    TestHost host(eightPictures().program, withBudget(5));
    host.keepStore = false;
    host.registerCallbacks();
    for (int round = 0; round < 2; ++round) {
        counters().clear();
        for (std::uint32_t i = 0; i < 8; ++i) {
            host.compute({200 + i});
            EXPECT_EQ(host.floats(i)[257], expected(static_cast<int>(i)));
            EXPECT_LE(host.handle()->liveBytes(), withBudget(5).memoryBudget);
        }
        EXPECT_GT(counters().spread, 0);
    }
    EXPECT_EQ(host.parked, 0);
}

TEST(Store, KeepsNothingForAHostThatComputesOnce)
{
    Resources resources;
    resources.flags = VELLOR_CPU_COMPUTE_ONCE;
    TestHost host(eightPictures().program, resources);
    for (int turn = 0; turn < 2; ++turn) {
        counters().clear();
        host.compute({200, 201, 202, 203, 203});
        EXPECT_EQ(counters().spread, 4 * 65536) << "once each, and again in the next turn";
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(host.floats(i)[257], expected(i));
        EXPECT_EQ(host.handle()->liveBytes(), 0u);
    }
}

TEST(Store, ASmallerBudgetTakesEffectAtOnce)
{
    TestHost host(eightPictures().program);
    host.compute({200, 201, 202, 203});
    EXPECT_EQ(host.parked, 0);
    VellorHardResources resources{};
    resources.memoryBudget = 2 * kPicture;
    EXPECT_EQ(vellorHandleSwitchHard(host.handle(), 0, &resources, nullptr), 0u);
    EXPECT_LE(host.handle()->liveBytes(), 2 * kPicture);
    EXPECT_GT(host.parked, 0);
    host.compute({200});
    EXPECT_EQ(host.floats(0)[257], expected(0));
}

TEST(Store, SurvivesAHostThatLosesBlocks)
{
    TestHost host(eightPictures().program, withBudget(4));
    host.damageStore = true;
    for (int round = 0; round < 2; ++round)
        for (std::uint32_t i = 0; i < 8; ++i) {
            EXPECT_EQ(host.compute({200 + i}), 0u);
            EXPECT_EQ(host.floats(i)[257], expected(static_cast<int>(i)));
        }
    EXPECT_GE(host.readBack, 1);
    EXPECT_EQ(host.fetchErrors, 0);
    EXPECT_EQ(host.completed.size(), 16u);
}

TEST(Store, WorksWithABudgetThatHoldsNothing)
{
    TestHost host(eightPictures().program, withBudget(0));
    EXPECT_EQ(host.compute({200, 201, 202}), 0u);
    for (std::uint32_t i = 0; i < 3; ++i)
        EXPECT_EQ(host.floats(i)[257], expected(static_cast<int>(i)));
}

TEST(Store, ADraggedSliderGoesRoundInAShareOfTheBudget)
{
    ProgramBuilder build;
    const int slider = build.input(program::ValueType::Float);
    const int size = build.sizeValue(8, 8);
    const int add = build.node("add", size, {build.node("ramp", size)});
    build.parameter(add, "amount", program::ParameterSource::Program, {}, build.inputValue(slider));
    build.output(build.node("spread", size, {add}), kGreyFloat);
    TestHost host(build.program, withBudget(128));
    for (int i = 0; i < 60; ++i) {
        host.setFloat(0, static_cast<float>(i));
        host.compute({200});
        EXPECT_EQ(host.floats(0)[257], expected(i));
    }
    // A sixteenth of the budget for what is superseded, two pictures each of the last two values, and the ramp.
    EXPECT_LE(host.handle()->liveBytes(), (8 + 2 * 2 + 1) * kPicture);
    EXPECT_EQ(host.parked, 0);
    counters().clear();
    host.setFloat(0, 57.0f);
    host.compute({200});
    EXPECT_EQ(host.floats(0)[257], expected(57));
    EXPECT_EQ(counters().spread, 0) << "the way back costs nothing";
}

TEST(Store, MovesToAnotherHandle)
{
    TestHost host(eightPictures().program);
    host.compute({200});
    VellorHandle* second = nullptr;
    ASSERT_EQ(makeHandle(&second, *host.context(), eightPictures().program, Resources()), 0u);
    EXPECT_EQ(vellorHandleTransferCache(second, host.handle(), 0), 0u);
    EXPECT_NE(vellorHandleTransferCache(second, second, 0), 0u);
    EXPECT_EQ(host.handle()->liveBytes(), 0u);
    counters().clear();
    vellorContextSetCallback(host.context(), VELLOR_CALLBACK_OUTPUT_COMPLETE, nullptr);
    vellorContextSetCallback(host.context(), VELLOR_CALLBACK_PROGRESS, nullptr);
    const std::uint32_t uid = 200;
    vellorHandlePushOutputs(second, VELLOR_PUSH_UIDS, &uid, 1, nullptr);
    EXPECT_EQ(vellorHandleStart(second, 0), 0u);
    EXPECT_EQ(counters().spread, 0);
    vellorHandleRelease(second);
}

} // namespace
} // namespace vellor::cpu::testing
