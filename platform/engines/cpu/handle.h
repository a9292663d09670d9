#pragma once

// One package that a host works with: the queue of what it pushed, the values of the inputs, the kept
// results.
//
// The host calls one function at a time, but for stop() and running(), which may come from any thread; the
// queue is locked all the same, since callbacks may push. Values of inputs take effect in the order of the
// queue, so outputs see the values pushed before them. Hints count for the whole of the next start. A stop,
// and a flush, drop outputs, hints and labels; values of inputs always stay.

#include "platform/engines/cpu/context.h"
#include "platform/engines/cpu/generation.h"

#include <atomic>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <variant>

namespace vellor::cpu {

class Handle
{
public:
    Handle(std::shared_ptr<VellorContext> context, std::unique_ptr<Package> package,
           const Resources& resources);

    // The entry points of these names, on checked pointers. Results are VellorResult.
    std::uint32_t pushOutputs(std::uint32_t flags, const std::uint32_t* outputs, std::uint32_t count,
                              void* user);
    std::uint32_t pushInput(std::uint32_t flags, std::uint32_t input, std::uint32_t type, const void* value,
                            void* user);
    std::uint32_t pushLabel(std::uint32_t label);
    std::uint32_t flush();
    std::uint32_t start();
    std::uint32_t outputs(std::uint32_t flags, std::uint32_t output, std::uint32_t count, void* out);
    std::uint32_t outputDesc(std::uint32_t output, VellorOutputDesc& desc) const;
    std::uint32_t inputDesc(std::uint32_t input, VellorInputDesc& desc) const;
    std::uint32_t imageRequest(std::uint32_t input, VellorImageRequest& request);
    std::uint32_t switchHard(const Resources& resources);
    std::uint32_t transferCache(Handle& from);
    std::uint32_t setProfile(VellorProfileCallback callback, void* user);
    VellorDataDesc desc() const;
    std::uint32_t label() const { return label_; }
    VellorContext* context() const { return context_.get(); }

    /// Any thread.
    void stop() { stop_ = true; }
    bool running() const { return running_; }
    /// The host lets go while start runs: stops, calls back no more. Whoever called start deletes the handle.
    void abandon();
    bool abandoned() const { return abandoned_; }

    /// For tests: what is kept, in bytes.
    std::uint64_t liveBytes() const { return store_.liveBytes(); }

private:
    struct SetInput
    {
        std::uint32_t input;
        InputValue value;
    };
    struct Compute
    {
        std::vector<int> outputs;
        void* user;
    };
    struct Label
    {
        std::uint32_t label;
    };
    using Command = std::variant<SetInput, Compute, Label>;

    VellorHandle* self();
    int outputIndex(std::uint32_t flags, std::uint32_t output) const;
    std::uint32_t makeValue(std::uint32_t input, const void* value, void* user, InputValue& into) const;
    void push(Command command);
    void dropQueue();
    std::uint32_t runQueue();
    std::uint32_t execute(const Compute& compute, const Hints& hints);
    std::shared_ptr<const HostImage> picture(std::uint32_t input, int width, int height);
    void report(std::uint32_t current, std::uint32_t total);
    void deliver(int output, Result result, void* user);
    std::uint32_t fetchImage(int output, VellorTexture& texture);
    bool writeLevels(const program::Output& output, std::shared_ptr<const Image> image, int levels,
                     std::uint8_t* out, std::uint64_t& scratchBytes);

    /// The picture that the host gave when it was last asked.
    struct Asked
    {
        std::uint64_t serial = 0;
        int width = 0, height = 0;
        std::shared_ptr<const HostImage> image;
    };

    std::shared_ptr<VellorContext> context_;
    std::unique_ptr<Package> package_;
    Resources resources_;
    Inputs inputs_;
    Values values_;
    CacheStore cacheStore_;
    ImageStore store_;
    std::vector<Result> results_; // by output
    std::map<std::uint32_t, Asked> asked_;

    mutable std::mutex mutex_; // the next two
    std::deque<Command> queue_;
    Hints hints_;

    std::atomic<bool> running_{false}, stop_{false}, abandoned_{false};
    VellorProfileCallback profile_ = nullptr;
    void* profileUser_ = nullptr;
    Profiler* profiler_ = nullptr; // of the running generation
    std::uint32_t label_ = 0;
    bool reporting_ = false; // inside the progress callback, where the pool's threads are taken
};

} // namespace vellor::cpu

/// The interface's opaque type.
struct VellorHandle final : vellor::cpu::Handle
{
    using Handle::Handle;
};
