#include "platform/engines/cpu/stagerunner.h"

#include "platform/engines/cpu/chain.h"
#include "platform/engines/cpu/rowloop.h"

#include <algorithm>

namespace vellor::cpu {
namespace {

/// One run of a stage, with the pictures that it holds on to.
class Runner
{
public:
    Runner(const StageContext& context, const Stage& stage) : context_(context), stage_(stage) {}

    StageResult run()
    {
        if (context_.cost)
            *context_.cost = {std::vector<std::uint64_t>(stage_.nodes.size()), 0};
        for (const int node : stage_.reads) {
            std::shared_ptr<const Image> image = context_.store.get(context_.plan.nodes[node].key);
            if (!image)
                return StageResult::Lost;
            views_[node] = image->view();
            held_.push_back(std::move(image));
        }
        for (const int node : stage_.writes)
            results_[node] = context_.store.make(context_.plan.nodes[node].shape());
        const PlanNode& first = context_.plan.nodes[stage_.nodes.front()];
        if (!(first.isPoint() ? runChain(first) : runArea(first)))
            return StageResult::Stopped;
        for (const int node : stage_.writes) {
            const PlanNode& planned = context_.plan.nodes[node];
            context_.store.put(planned.key, results_[node], planned.origin);
        }
        return StageResult::Done;
    }

private:
    RowLoop loop(int width, int rows, std::uint64_t work) const
    {
        return {context_.threads,
                context_.monitor,
                context_.resources,
                rows,
                width,
                work / static_cast<std::uint64_t>(std::max(rows, 1))};
    }

    bool runChain(const PlanNode& first)
    {
        const Chain chain(context_, stage_, views_, results_);
        if (context_.monitor.stopped())
            return false;
        const std::size_t each = (chain.slotFloats() + 15) / 16 * 16;
        const auto workers = static_cast<std::size_t>(context_.resources.threadCount());
        const Buffer slots = context_.pool.acquire(each * sizeof(float) * workers);
        std::vector<std::vector<std::uint64_t>> ticks(context_.cost ? workers : 0);
        const bool done = loop(first.width, first.height, stage_.work).run([&](int y0, int y1, int worker) {
            std::uint64_t* counts = nullptr;
            if (!ticks.empty()) {
                ticks[worker].resize(stage_.nodes.size());
                counts = ticks[worker].data();
            }
            chain.run(y0, y1, slots.floats() + each * static_cast<std::size_t>(worker), counts);
        });
        for (const auto& counts : ticks)
            for (std::size_t i = 0; i < counts.size(); ++i)
                context_.cost->ticks[i] += counts[i];
        if (context_.cost)
            context_.cost->scratchBytes = each * sizeof(float) * workers;
        return done;
    }

    bool runArea(const PlanNode& node)
    {
        const std::vector<nodes::ImageView> operands = viewsOf(node);
        const auto picture = views_.find(node.picture);
        const nodes::Setup setup =
            setupOf(context_, node, operands, picture == views_.end() ? nodes::ImageView() : picture->second);
        const std::unique_ptr<nodes::State> state = prepareNode(node, setup);
        if (context_.monitor.stopped())
            return false;
        std::vector<nodes::ScratchShape> shapes;
        if (node.kind->scratch)
            shapes = node.kind->scratch(state.get(), setup);
        std::vector<std::shared_ptr<Image>> scratch;
        std::vector<nodes::ImageView> scratchViews;
        nodes::AreaJob job;
        job.state = state.get();
        job.operands = operands.data();
        job.stop = &context_.monitor.stop();
        const int passes = static_cast<int>(shapes.size()) + 1;
        for (job.pass = 0; job.pass < passes; ++job.pass) {
            const bool last = job.pass + 1 == passes;
            if (!last)
                scratch.push_back(makeScratch(shapes[job.pass]));
            job.result =
                last ? results_.at(stage_.nodes.front())->mutableView() : scratch.back()->mutableView();
            job.scratch = scratchViews.data();
            if (!runPass(job, stage_.work / static_cast<std::uint64_t>(passes)))
                return false;
            if (!last)
                scratchViews.push_back(scratch.back()->view());
        }
        return true;
    }

    bool runPass(const nodes::AreaJob& pass, std::uint64_t work) const
    {
        const nodes::NodeDeclaration& kind = *context_.plan.nodes[stage_.nodes.front()].kind;
        RowLoop rows = loop(pixelsOfRow(pass), pass.result.height, work);
        rows.together = kind.rowsTogether;
        return rows.run([&](int y0, int y1, int) {
            nodes::AreaJob job = pass;
            job.y0 = y0;
            job.y1 = y1;
            kind.area(job);
        });
    }

    /// How many pixels stand behind a row of the pass's result. Scratch may be narrow or low: each of its
    /// rows then stands for a share of the pictures.
    int pixelsOfRow(const nodes::AreaJob& pass) const
    {
        const PlanNode& node = context_.plan.nodes[stage_.nodes.front()];
        std::int64_t pixels = std::int64_t(node.width) * node.height;
        for (std::size_t i = 0; i < node.operands.size(); ++i)
            pixels = std::max(pixels, std::int64_t(pass.operands[i].width) * pass.operands[i].height);
        return static_cast<int>(
            std::max<std::int64_t>(pass.result.width, pixels / std::max(pass.result.height, 1)));
    }

    std::shared_ptr<Image> makeScratch(const nodes::ScratchShape& shape) const
    {
        auto image = context_.store.make({std::max(shape.width, 1), std::max(shape.height, 1),
                                          std::clamp(shape.channels, 1, nodes::kMaxChannels)});
        if (context_.cost)
            context_.cost->scratchBytes += image->byteSize();
        return image;
    }

    std::vector<nodes::ImageView> viewsOf(const PlanNode& node) const
    {
        std::vector<nodes::ImageView> views(node.operands.size());
        for (std::size_t i = 0; i < views.size(); ++i)
            if (node.operands[i] != kNoNode)
                views[i] = views_.at(node.operands[i]);
        return views;
    }

    const StageContext& context_;
    const Stage& stage_;
    Pictures views_;
    std::vector<std::shared_ptr<const Image>> held_;
    Results results_;
};

} // namespace

StageResult runStage(const StageContext& context, const Schedule& schedule, const Stage& stage)
{
    const StageResult result = Runner(context, stage).run();
    if (result != StageResult::Done)
        return result;
    for (const int node : stage.writes) {
        const Key& key = context.plan.nodes[node].key;
        context.store.need(key, schedule.uses[node]);
        if (context.plan.nodes[node].keep)
            context.store.hint(key);
    }
    for (const int node : stage.reads)
        context.store.used(context.plan.nodes[node].key);
    return result;
}

nodes::Setup setupOf(const StageContext& context, const PlanNode& node,
                     const std::vector<nodes::ImageView>& operands, const nodes::ImageView& image)
{
    nodes::Setup setup;
    setup.parameters = node.parameters.data();
    setup.width = node.width;
    setup.height = node.height;
    setup.channels = node.channels;
    setup.seed = node.seed;
    setup.operands = operands.data();
    setup.operandCount = operands.size();
    setup.inputWords = context.plan.inputWords.data();
    setup.image = image;
    setup.stop = &context.monitor.stop();
    return setup;
}

std::unique_ptr<nodes::State> prepareNode(const PlanNode& node, const nodes::Setup& setup)
{
    if (node.source)
        return pictureState(node.source);
    return node.kind->prepare ? node.kind->prepare(setup) : nullptr;
}

} // namespace vellor::cpu
