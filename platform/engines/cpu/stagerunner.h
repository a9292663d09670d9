#pragma once

// Carries out one stage: prepares its kernels, runs them over the rows of their pictures, and puts the whole
// pictures into the store. The thread that called start, with the pool's threads for the rows.

#include "platform/engines/cpu/imagestore.h"
#include "platform/engines/cpu/monitor.h"
#include "platform/engines/cpu/plan.h"
#include "platform/engines/cpu/resources.h"
#include "platform/engines/cpu/schedule.h"
#include "platform/engines/cpu/threadpool.h"

#include <unordered_map>

namespace vellor::cpu {

enum class StageResult
{
    Done,
    Stopped, // nothing was put into the store
    Lost     // a picture that the stage reads is not in the store any more
};

/// The whole pictures that a stage reads and writes, by node of the plan.
using Pictures = std::unordered_map<int, nodes::ImageView>;
using Results = std::unordered_map<int, std::shared_ptr<Image>>;

/// What a stage needed, for profiles.
struct StageCost
{
    std::vector<std::uint64_t> ticks; // by node of the stage, in units of no meaning
    std::uint64_t scratchBytes = 0;
};

struct StageContext
{
    const Plan& plan;
    ImageStore& store;
    BufferPool& pool;
    ThreadPool& threads;
    Monitor& monitor;
    Resources resources;
    StageCost* cost = nullptr; // of the stage that runs; null: nobody asks
};

/// Throws std::bad_alloc, and what kernels throw.
StageResult runStage(const StageContext& context, const Schedule& schedule, const Stage& stage);

/// What a kernel is told ahead of its pixels. `operands` has as many views as the node's kind has operands;
/// `image` is the picture of the node's image input.
nodes::Setup setupOf(const StageContext& context, const PlanNode& node,
                     const std::vector<nodes::ImageView>& operands, const nodes::ImageView& image);
std::unique_ptr<nodes::State> prepareNode(const PlanNode& node, const nodes::Setup& setup);

} // namespace vellor::cpu
