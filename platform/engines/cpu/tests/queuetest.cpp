// What the host pushes, in which order it takes effect, and what it is told.

#include "platform/engines/cpu/tests/fakekinds.h"
#include "platform/engines/cpu/tests/programbuilder.h"
#include "platform/engines/cpu/tests/testhost.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace vellor::cpu::testing {
namespace {

constexpr std::uint8_t kGreyFloat = VELLOR_FORMAT_GRAYSCALE | VELLOR_FORMAT_32FLOAT;

/// Output 200: ramp + input 0; 201: input 0 itself; 202: ramp + 1; 203: 16 x 2048 slow pixels.
ProgramBuilder program()
{
    ProgramBuilder build;
    const int value = build.inputValue(build.input(program::ValueType::Float));
    const int size = build.sizeValue(3, 3);
    const int ramp = build.node("ramp", size);
    const int moved = build.node("add", size, {ramp}), fixed = build.node("add", size, {ramp});
    build.parameter(moved, "amount", program::ParameterSource::Program, {}, value);
    build.constant(fixed, "amount", 1.0f);
    build.output(moved, kGreyFloat);
    build.numericOutput(value);
    build.output(fixed, kGreyFloat);
    build.output(build.node("slow", build.sizeValue(4, 11)), kGreyFloat);
    return build;
}

bool running(VellorHandle* handle)
{
    std::uint32_t state = 0;
    vellorHandleGetState(handle, nullptr, &state);
    return (state & VELLOR_STATE_RUNNING) != 0;
}

TEST(Queue, ValuesTakeEffectInOrder)
{
    TestHost host(program().program);
    std::vector<float> seen;
    host.onComplete = [&](std::uint32_t output) {
        seen.push_back(output == 1 ? 0.0f : host.floats(output)[0]);
        EXPECT_TRUE(running(host.handle()));
        EXPECT_EQ(vellorHandleStart(host.handle(), 0), static_cast<std::uint32_t>(VELLOR_ERROR_BUSY));
    };
    host.setFloat(0, 2.0f);
    host.push({202, 200});
    host.setFloat(0, 3.0f);
    host.push({0}, 0); // by index
    host.setFloat(0, 4.0f);
    EXPECT_TRUE(host.completed.empty());
    EXPECT_FALSE(running(host.handle()));
    EXPECT_EQ(host.start(), 0u);
    EXPECT_FALSE(running(host.handle()));
    EXPECT_EQ(host.completed, (std::vector<std::uint32_t>{2, 0, 0}));
    EXPECT_EQ(seen, (std::vector<float>{1.0f, 2.0f, 3.0f}));
    host.compute({201});
    EXPECT_EQ(host.numbers[1][0], bitsOf(4.0f));
    EXPECT_EQ(host.fetchErrors, 0);
    EXPECT_EQ(host.foreignThread, 0);
    EXPECT_EQ(host.allocations, 3);
}

TEST(Queue, FlushDropsOutputsAndKeepsValues)
{
    TestHost host(program().program);
    host.push({200});
    host.setFloat(0, 9.0f);
    vellorHandleSyncSetLabel(host.handle(), 5, nullptr);
    EXPECT_EQ(vellorHandleFlush(host.handle()), 0u);
    EXPECT_EQ(host.start(), 0u);
    EXPECT_TRUE(host.completed.empty());
    std::uint32_t label = 77;
    vellorHandleSyncGetLabel(host.handle(), &label);
    EXPECT_EQ(label, 0u);
    vellorHandleSyncSetLabel(host.handle(), 6, nullptr);
    host.compute({200});
    vellorHandleSyncGetLabel(host.handle(), &label);
    EXPECT_EQ(label, 6u);
    EXPECT_EQ(host.floats(0)[0], 9.0f);
}

TEST(Queue, HintsAloneComputeNothing)
{
    TestHost host(program().program);
    vellorHandlePushSetInput(host.handle(), VELLOR_PUSH_HINT, 0, 0, nullptr, nullptr);
    host.push({200, 201}, VELLOR_PUSH_HINT | VELLOR_PUSH_UIDS);
    EXPECT_EQ(host.start(), 0u);
    EXPECT_TRUE(host.completed.empty());
}

TEST(Queue, StopsFromACallback)
{
    TestHost host(program().program);
    host.onComplete = [&](std::uint32_t) { vellorHandleStop(host.handle(), VELLOR_STOP_DEFAULT); };
    host.push({202, 200});
    host.push({201});
    host.setFloat(0, 3.0f);
    EXPECT_EQ(host.start(), 0u);
    EXPECT_EQ(host.completed, (std::vector<std::uint32_t>{2}));
    host.onComplete = nullptr;
    host.start();
    EXPECT_EQ(host.completed.size(), 1u) << "a stop drops what was queued";
    host.compute({200});
    EXPECT_EQ(host.floats(0)[0], 3.0f) << "values stay";
}

TEST(Queue, StopsFromAnotherThreadAndFromProgress)
{
    for (const bool fromProgress : {true, false}) {
        TestHost host(program().program);
        std::atomic<long long> asked{0};
        const auto now = [] { return std::chrono::steady_clock::now().time_since_epoch().count(); };
        std::thread other;
        if (fromProgress)
            host.onProgress = [&](std::uint32_t) {
                asked = asked ? asked.load() : now();
                vellorHandleStop(host.handle(), VELLOR_STOP_DEFAULT);
            };
        else
            other = std::thread([&] {
                while (!running(host.handle()))
                    std::this_thread::yield();
                asked = now();
                vellorHandleStop(host.handle(), VELLOR_STOP_DEFAULT);
            });
        counters().clear();
        EXPECT_EQ(host.compute({203}), 0u);
        RecordProperty(fromProgress ? "callback_us" : "thread_us", std::to_string((now() - asked) / 1000));
        if (other.joinable())
            other.join();
        EXPECT_TRUE(host.completed.empty());
        EXPECT_LT(counters().ramp, 16 * 2048);
        EXPECT_FALSE(running(host.handle()));
    }
}

TEST(Queue, ReportsProgressInStepsThatHostsLookAt)
{
    TestHost host(program().program);
    host.compute({203});
    ASSERT_FALSE(host.progress.empty());
    std::uint32_t last = 0;
    for (const auto& [current, total] : host.progress) {
        EXPECT_GT(total, 0u);
        EXPECT_LE(current, total);
        EXPECT_EQ(current % 4, 0u);
        EXPECT_GE(current, last);
        last = current;
    }
    EXPECT_EQ(last, host.progress.back().second);
    EXPECT_GT(host.progress.size(), 20u);
}

TEST(Queue, AHandleReleasedFromItsOwnCallbackEndsQuietly)
{
    TestHost host(program().program);
    int calls = 0;
    host.onComplete = [&](std::uint32_t) {
        ++calls;
        host.release();
    };
    host.push({202, 200, 203});
    EXPECT_EQ(host.start(), 0u);
    EXPECT_EQ(calls, 1);
}

TEST(Queue, RefusesWhatDoesNotFit)
{
    TestHost host(program().program);
    const std::uint32_t unknown[] = {200, 999};
    const float value[4] = {};
    VellorTexture texture{};
    std::uint32_t words[4];
    VellorHandle* handle = host.handle();
    EXPECT_NE(vellorHandlePushOutputs(handle, 2, unknown, 2, nullptr), 0u);
    EXPECT_NE(vellorHandlePushOutputs(handle, 2, nullptr, 1, nullptr), 0u);
    EXPECT_NE(vellorHandlePushSetInput(handle, 0, 1, 0, value, nullptr), 0u);
    EXPECT_NE(vellorHandlePushSetInput(handle, 0, 0, VELLOR_TYPE_IMAGE, value, nullptr), 0u);
    EXPECT_NE(vellorHandlePushSetInput(handle, 0, 0, 0, nullptr, nullptr), 0u);
    EXPECT_NE(vellorHandlePushSetInput(handle, VELLOR_PUSH_HINT, 1, 0, nullptr, nullptr), 0u);
    EXPECT_EQ(vellorHandleGetOutputs(handle, 0, 0, 1, &texture), std::uint32_t(VELLOR_ERROR_NOT_COMPUTED));
    host.compute({200, 201});
    EXPECT_EQ(vellorHandleGetOutputs(handle, VELLOR_FETCH_NUMERIC, 0, 1, words),
              std::uint32_t(VELLOR_ERROR_TYPE));
    EXPECT_EQ(vellorHandleGetOutputs(handle, 0, 1, 1, &texture), std::uint32_t(VELLOR_ERROR_TYPE));
    EXPECT_NE(vellorHandleGetOutputs(handle, 0, 9, 1, &texture), 0u);
    EXPECT_NE(vellorHandleGetOutputs(handle, 0, 0, 2, &texture), 0u);
    ASSERT_EQ(vellorHandleGetOutputs(handle, 0, 0, 1, &texture), 0u) << "after the callback too";
    vellorContextMemoryFree(host.context(), texture.buffer);
    EXPECT_NE(vellorHandleStart(nullptr, 0), 0u);
    EXPECT_NE(vellorHandleGetDesc(handle, nullptr), 0u);
}

TEST(Queue, DescribesThePackage)
{
    ProgramBuilder build = program();
    const int text = build.input(program::ValueType::String);
    build.program.inputs[text].defaultText = U"ab";
    build.input(program::ValueType::Image);
    build.program.inputs[0].defaultValue = {bitsOf(1.5f)};
    build.program.outputs[0].fixedWidth = build.program.outputs[0].fixedHeight = 8;
    TestHost host(build.program);
    VellorDataDesc data{};
    EXPECT_EQ(vellorHandleGetDesc(host.handle(), &data), 0u);
    EXPECT_EQ(data.outputsCount, 4u);
    EXPECT_EQ(data.inputsCount, 3u);
    VellorOutputDesc output{};
    EXPECT_EQ(vellorHandleGetOutputDesc(host.handle(), 0, &output), 0u);
    EXPECT_EQ(output.uid, 200u);
    EXPECT_EQ(output.width, 8u);
    EXPECT_EQ(output.pixelFormat, kGreyFloat);
    EXPECT_EQ(output.type, static_cast<std::uint32_t>(VELLOR_TYPE_IMAGE));
    EXPECT_NE(vellorHandleGetOutputDesc(host.handle(), 4, &output), 0u);
    VellorInputDesc inputs[3] = {};
    for (std::uint32_t i = 0; i < 3; ++i)
        EXPECT_EQ(vellorHandleGetInputDesc(host.handle(), i, &inputs[i]), 0u);
    EXPECT_EQ(*static_cast<const float*>(inputs[0].defaultValue), 1.5f);
    EXPECT_EQ(std::u32string(static_cast<const char32_t*>(inputs[1].defaultValue)), U"ab");
    EXPECT_EQ(inputs[2].defaultValue, nullptr);
    EXPECT_NE(vellorHandleGetInputDesc(host.handle(), 3, &inputs[0]), 0u);
    VellorContext* parent = nullptr;
    EXPECT_EQ(vellorHandleGetParentContext(host.handle(), &parent), 0u);
    EXPECT_EQ(parent, host.context());
}

} // namespace
} // namespace vellor::cpu::testing
