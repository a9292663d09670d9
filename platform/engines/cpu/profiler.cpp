#include "platform/engines/cpu/profiler.h"

#include "platform/engines/cpu/image.h"
#include "platform/engines/cpu/resample.h"

#include <algorithm>
#include <numeric>

namespace vellor::cpu {
namespace {

/// The node of the package, or kNoNode for a step of the engine's own.
int packageNode(const PlanNode& node)
{
    return node.packs ? kNoNode : node.origin;
}

const char* kindName(const PlanNode& node, const Package& package)
{
    if (node.packs)
        return "pack";
    if (node.origin != kNoNode)
        return package.kind(node.origin).name;
    return node.source ? "image" : "resample";
}

} // namespace

VellorProfileStep Profiler::stepOf(const Plan& plan, const Package& package, int node) const
{
    const PlanNode& planned = plan.nodes[node];
    VellorProfileStep step{};
    const int source = packageNode(planned);
    step.node = source == kNoNode ? VELLOR_PROFILE_NO_NODE : static_cast<std::uint32_t>(source);
    step.outputUid = outputUid_;
    step.name = source == kNoNode ? "" : package.program().nodes[source].name.c_str();
    step.kind = kindName(planned, package);
    step.stage = stage_;
    step.width = static_cast<std::uint32_t>(planned.width);
    step.height = static_cast<std::uint32_t>(planned.height);
    step.channels = static_cast<std::uint32_t>(planned.channels);
    return step;
}

void Profiler::stage(const Plan& plan, const Package& package, const Stage& stage, const StageCost& cost,
                     const Stopwatch& watch, std::uint64_t liveBytes)
{
    const double seconds = watch.clock(), processorSeconds = watch.processor();
    const std::uint64_t all = std::accumulate(cost.ticks.begin(), cost.ticks.end(), std::uint64_t(0));
    for (std::size_t i = 0; i < stage.nodes.size(); ++i) {
        const int node = stage.nodes[i];
        const double share = all ? static_cast<double>(cost.ticks[i]) / static_cast<double>(all)
                                 : 1.0 / static_cast<double>(stage.nodes.size());
        VellorProfileStep step = stepOf(plan, package, node);
        step.seconds = seconds * share;
        step.processorSeconds = processorSeconds * share;
        const bool whole = std::find(stage.writes.begin(), stage.writes.end(), node) != stage.writes.end();
        step.resultBytes = whole ? plan.nodes[node].shape().byteSize() : 0;
        step.scratchBytes = cost.scratchBytes / stage.nodes.size();
        step.liveBytes = liveBytes;
        report(step);
    }
    ++stage_;
}

void Profiler::cached(const Plan& plan, const Package& package, int node, std::uint64_t liveBytes)
{
    VellorProfileStep step = stepOf(plan, package, node);
    step.cached = 1;
    step.resultBytes = plan.nodes[node].shape().byteSize();
    step.liveBytes = liveBytes;
    report(step);
    ++stage_;
}

void Profiler::output(const Image& image, std::uint64_t packedBytes, std::uint64_t scratchBytes,
                      const Stopwatch& watch, std::uint64_t liveBytes)
{
    VellorProfileStep step{};
    step.node = VELLOR_PROFILE_NO_NODE;
    step.outputUid = outputUid_;
    step.name = "";
    step.kind = "output";
    step.stage = stage_++;
    step.width = static_cast<std::uint32_t>(image.width());
    step.height = static_cast<std::uint32_t>(image.height());
    step.channels = static_cast<std::uint32_t>(image.channels());
    step.seconds = watch.clock();
    step.processorSeconds = watch.processor();
    step.resultBytes = packedBytes;
    step.scratchBytes = scratchBytes;
    step.liveBytes = liveBytes;
    report(step);
}

} // namespace vellor::cpu
