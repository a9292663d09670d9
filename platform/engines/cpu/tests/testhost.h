#pragma once

#include "platform/engines/cpu/package.h"
#include "platform/engines/cpu/resources.h"
#include "platform/engines/cpu/tests/fakekinds.h"
#include "platform/program/program.h"

#include <vellor/engine.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace vellor::cpu::testing {

/// A host with one handle, over the entry points alone, but for the fake kinds and the program that it starts
/// from. It fetches every finished output from its callback, writes down what it is told and keeps a cache
/// store.
class TestHost
{
public:
    explicit TestHost(program::Program program, Resources resources = {}, KindLookup kinds = findFakeKind);
    ~TestHost();
    TestHost(const TestHost&) = delete;
    TestHost& operator=(const TestHost&) = delete;

    VellorHandle* handle() const { return handle_; }
    VellorContext* context() const { return context_; }
    /// Of making the handle.
    std::uint32_t initResult() const { return initResult_; }

    void setFloat(std::uint32_t input, float value);
    void push(std::vector<std::uint32_t> uids, std::uint32_t flags = VELLOR_PUSH_UIDS);
    std::uint32_t start() { return vellorHandleStart(handle_, 0); }
    /// push and start; the result of start.
    std::uint32_t compute(std::vector<std::uint32_t> uids);
    /// Lets go of the handle early.
    void release();

    /// Bytes of level 0 of the last fetch of an image output, by index, and its header.
    std::map<std::uint32_t, std::vector<std::uint8_t>> pictures;
    std::map<std::uint32_t, VellorTexture> textures;
    std::map<std::uint32_t, program::Words> numbers;
    /// The picture as floats, for the formats with 32-bit floats.
    std::vector<float> floats(std::uint32_t output) const;

    std::vector<std::uint32_t> completed; // output indices as they came
    std::vector<std::pair<std::uint32_t, std::uint32_t>> progress;
    std::map<std::uint32_t, std::vector<char>> store; // entries of the cache store
    int parked = 0, readBack = 0, removed = 0, fetchErrors = 0, foreignThread = 0, allocations = 0;
    bool damageStore = false; // what is read back is not what was parked
    bool keepStore = true;    // registers the cache-store callback; read by registerCallbacks
    std::function<void(std::uint32_t output)> onComplete;
    std::function<void(std::uint32_t current)> onProgress;
    std::function<void(std::uint32_t input, void** image, const VellorImageRequest& request)> onImageInput;

    void registerCallbacks();

private:
    static TestHost& of(VellorHandle* handle);
    void fetch(std::uint32_t output);

    VellorContext* context_ = nullptr;
    VellorHandle* handle_ = nullptr;
    std::uint32_t initResult_ = 0;
    std::thread::id thread_ = std::this_thread::get_id();
};

} // namespace vellor::cpu::testing
