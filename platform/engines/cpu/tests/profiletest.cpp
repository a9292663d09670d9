// What a host is told about the cost of its nodes.

#include "platform/engines/cpu/image.h"
#include "platform/engines/cpu/tests/programbuilder.h"
#include "platform/engines/cpu/tests/testhost.h"

#include <vellor/profile.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace vellor::cpu::testing {
namespace {

struct Step
{
    VellorProfileStep step;
    std::string kind, name;
};

void keep(VellorHandle*, const VellorProfileStep* step, void* user)
{
    static_cast<std::vector<Step>*>(user)->push_back({*step, step->kind, step->name});
}

std::vector<std::string> kindsOf(const std::vector<Step>& steps)
{
    std::vector<std::string> kinds;
    for (const Step& step : steps)
        kinds.push_back(step.kind);
    return kinds;
}

TEST(Profile, TellsOfEachNodeOnce)
{
    // ramp + add in one stage, spread, add at half the size; the last add follows from an input.
    ProgramBuilder build;
    const int amount = build.inputValue(build.input(program::ValueType::Float));
    const int size = build.sizeValue(6, 5), half = build.sizeValue(5, 4);
    const int spread = build.node("spread", size, {build.node("add", size, {build.node("ramp", size)})});
    const int last = build.node("add", half, {spread});
    build.parameter(last, "amount", program::ParameterSource::Program, {}, amount);
    build.output(last, VELLOR_FORMAT_GRAYSCALE);
    TestHost host(build.program);
    std::vector<Step> steps;
    ASSERT_EQ(vellorHandleSetProfile(host.handle(), keep, &steps), 0u);
    host.compute({200});
    EXPECT_EQ(kindsOf(steps),
              (std::vector<std::string>{"ramp", "add", "spread", "resample", "add", "pack", "output"}));
    constexpr std::uint32_t kOwn = VELLOR_PROFILE_NO_NODE;
    const std::vector<std::uint32_t> nodes{0, 1, 2, kOwn, 3, kOwn, kOwn};
    const std::vector<std::uint32_t> stages{0, 0, 1, 2, 3, 3, 4};
    const std::uint64_t whole = Image::byteSize(64, 32, 1), small = Image::byteSize(32, 16, 1);
    const std::vector<std::uint64_t> bytes{0, whole, whole, small, 0, 32 * 16, 32 * 16};
    ASSERT_EQ(steps.size(), nodes.size());
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const VellorProfileStep& step = steps[i].step;
        EXPECT_EQ(step.node, nodes[i]) << i;
        EXPECT_EQ(step.stage, stages[i]) << i;
        EXPECT_EQ(step.resultBytes, bytes[i]) << i;
        EXPECT_EQ(step.outputUid, 200u);
        EXPECT_EQ(step.width, i < 3 ? 64u : 32u);
        EXPECT_EQ(step.cached, 0u);
        EXPECT_GT(step.seconds, 0.0);
        EXPECT_GT(step.processorSeconds, 0.0);
        EXPECT_GE(step.liveBytes, step.stage == 0 ? whole : 2 * whole);
        EXPECT_EQ(steps[i].name, step.node == VELLOR_PROFILE_NO_NODE ? "" : steps[i].kind);
    }
    EXPECT_EQ(steps[2].step.scratchBytes, whole) << "of the spread's first pass";

    steps.clear();
    host.setFloat(0, 2.0f);
    host.compute({200});
    EXPECT_EQ(kindsOf(steps), (std::vector<std::string>{"resample", "add", "pack", "output"}));
    EXPECT_EQ(steps[0].step.cached, 1u);
    EXPECT_EQ(steps[1].step.cached, 0u);

    ASSERT_EQ(vellorHandleSetProfile(host.handle(), nullptr, nullptr), 0u);
    steps.clear();
    host.setFloat(0, 3.0f);
    host.compute({200});
    EXPECT_TRUE(steps.empty());
}

} // namespace
} // namespace vellor::cpu::testing
