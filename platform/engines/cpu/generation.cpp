#include "platform/engines/cpu/generation.h"

#include <algorithm>

namespace vellor::cpu {
namespace {

bool isImage(const Package& package, int output)
{
    return package.program().outputs[output].type == program::ValueType::Image;
}

} // namespace

std::uint32_t Generation::run(const std::vector<int>& outputs)
{
    changing_ = context_.inputs.takeChanged();
    for (const std::uint32_t input : hints_.inputs)
        changing_[input] = true;
    context_.store.beginGeneration();
    // A parked picture that did not come back is gone from the store, and nothing is parked any more: what is
    // missing now is computed by the second attempt, which can lose only what was parked before.
    Outcome outcome = Outcome::Lost;
    for (int attempts = 0; outcome == Outcome::Lost && attempts < 64; ++attempts)
        outcome = attempt(outputs);
    return outcome == Outcome::Lost ? VELLOR_ERROR_CACHE_STORE : VELLOR_OK;
}

PlanRequest Generation::requestFor(const std::vector<int>& outputs, std::size_t from) const
{
    PlanRequest request;
    request.changing = changing_;
    for (std::size_t i = from; i < outputs.size(); ++i)
        if (isImage(context_.package, outputs[i]))
            request.outputs.push_back(outputs[i]);
    for (const int output : hints_.outputs)
        if (isImage(context_.package, output))
            request.hintedOutputs.push_back(output);
    return request;
}

Generation::Outcome Generation::attempt(const std::vector<int>& outputs)
{
    Planner planner(context_.package, context_.inputs, context_.values, context_.store);
    const Plan plan = planner.make(requestFor(outputs, delivered_), context_.pictures);
    const Schedule schedule = makeSchedule(plan, (context_.resources.flags & VELLOR_CPU_NO_FUSION) == 0);
    markNeeded(plan, schedule);
    context_.monitor.begin(schedule.work);
    stagesDone_ = 0;
    reported_.assign(plan.nodes.size(), false);
    for (std::size_t root = 0; delivered_ < outputs.size(); ++delivered_) {
        if (context_.monitor.stopped())
            return Outcome::Stopped;
        const int output = outputs[delivered_];
        if (!isImage(context_.package, output)) {
            deliverNumber(output);
            continue;
        }
        if (context_.profiler)
            context_.profiler->beginOutput(context_.package.program().outputs[output].uid);
        Outcome outcome = advance(plan, schedule, schedule.stagesBefore[root]);
        reportCached(plan, plan.roots[root]);
        if (outcome == Outcome::Done)
            outcome = deliverImage(output, plan.nodes[plan.roots[root]].key);
        if (outcome != Outcome::Done)
            return outcome;
        ++root;
    }
    return Outcome::Done;
}

/// What is in the store already and will be read must not give way before.
void Generation::markNeeded(const Plan& plan, const Schedule& schedule)
{
    for (std::size_t i = 0; i < plan.nodes.size(); ++i) {
        if (schedule.uses[i] > 0)
            context_.store.need(plan.nodes[i].key, schedule.uses[i]);
        if (plan.nodes[i].keep)
            context_.store.hint(plan.nodes[i].key);
    }
}

Generation::Outcome Generation::advance(const Plan& plan, const Schedule& schedule, int until)
{
    const StageContext stages{
        plan, context_.store, context_.pool, context_.threads, context_.monitor, context_.resources};
    for (; stagesDone_ < until; ++stagesDone_) {
        if (context_.monitor.stopped())
            return Outcome::Stopped;
        const StageResult result = runOne(stages, schedule, schedule.stages[stagesDone_]);
        if (result != StageResult::Done)
            return result == StageResult::Lost ? Outcome::Lost : Outcome::Stopped;
    }
    return Outcome::Done;
}

StageResult Generation::runOne(const StageContext& stages, const Schedule& schedule, const Stage& stage)
{
    if (!context_.profiler)
        return runStage(stages, schedule, stage);
    for (const int node : stage.reads)
        reportCached(stages.plan, node);
    StageCost cost;
    StageContext measured = stages;
    measured.cost = &cost;
    const Stopwatch watch;
    const StageResult result = runStage(measured, schedule, stage);
    if (result == StageResult::Done)
        context_.profiler->stage(stages.plan, context_.package, stage, cost, watch,
                                 context_.store.liveBytes());
    return result;
}

/// Tells of a result that no stage made, once.
void Generation::reportCached(const Plan& plan, int node)
{
    if (!context_.profiler || plan.nodes[node].compute || reported_[node])
        return;
    reported_[node] = true;
    context_.profiler->cached(plan, context_.package, node, context_.store.liveBytes());
}

Generation::Outcome Generation::deliverImage(int output, const Key& key)
{
    Result result;
    result.available = true;
    result.key = key;
    result.image = context_.store.get(key);
    if (!result.image)
        return Outcome::Lost;
    context_.store.used(key);
    context_.deliver(output, std::move(result));
    return Outcome::Done;
}

void Generation::deliverNumber(int output)
{
    Result result;
    result.available = true;
    result.words = context_.values.get(context_.package.program().outputs[output].value, context_.inputs);
    context_.deliver(output, std::move(result));
}

} // namespace vellor::cpu
