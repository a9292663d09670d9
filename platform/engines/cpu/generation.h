#pragma once

// Computes one push of outputs and hands out their results, in the order of the push. On the thread that
// called start.

#include "platform/engines/cpu/planner.h"
#include "platform/engines/cpu/profiler.h"
#include "platform/engines/cpu/results.h"
#include "platform/engines/cpu/stagerunner.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace vellor::cpu {

struct Hints
{
    std::vector<std::uint32_t> inputs;
    std::vector<int> outputs;
};

/// What a generation works on; all of it the handle's or the context's.
struct GenerationContext
{
    const Package& package;
    Inputs& inputs;
    Values& values;
    ImageStore& store;
    BufferPool& pool;
    ThreadPool& threads;
    Monitor& monitor;
    Resources resources;
    PictureSource pictures;
    std::function<void(int output, Result result)> deliver;
    Profiler* profiler = nullptr; // null: nobody asks
};

class Generation
{
public:
    Generation(const GenerationContext& context, const Hints& hints) : context_(context), hints_(hints) {}

    /// A VellorResult. Being stopped is no error. Throws std::bad_alloc, and what kernels throw.
    std::uint32_t run(const std::vector<int>& outputs);

private:
    enum class Outcome
    {
        Done,
        Stopped,
        Lost
    };

    PlanRequest requestFor(const std::vector<int>& outputs, std::size_t from) const;
    Outcome attempt(const std::vector<int>& outputs);
    void markNeeded(const Plan& plan, const Schedule& schedule);
    Outcome advance(const Plan& plan, const Schedule& schedule, int until);
    StageResult runOne(const StageContext& stages, const Schedule& schedule, const Stage& stage);
    void reportCached(const Plan& plan, int node);
    Outcome deliverImage(int output, const Key& key);
    void deliverNumber(int output);

    const GenerationContext& context_;
    const Hints& hints_;
    std::vector<bool> changing_;
    std::size_t delivered_ = 0;  // of the outputs
    int stagesDone_ = 0;         // of the attempt
    std::vector<bool> reported_; // to the profiler as cached, by node of the plan
};

} // namespace vellor::cpu
