#include "platform/engines/cpu/schedule.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

namespace vellor::cpu {
namespace {

/// Area nodes cost more a pixel than point nodes; how much more shows in nothing but the progress bar.
constexpr std::uint64_t kAreaWeight = 8;

class Scheduler
{
public:
    Scheduler(const Plan& plan, bool fuse) : plan_(plan), fuse_(fuse), group_(plan.nodes.size()) {}

    Schedule make()
    {
        std::iota(group_.begin(), group_.end(), 0);
        if (fuse_)
            joinGroups();
        makeStages();
        findWhole();
        orderStages();
        countUses();
        return std::move(schedule_);
    }

private:
    template<class Visit> void forOperands(int node, Visit visit) const
    {
        for (const int operand : plan_.nodes[node].operands)
            if (operand != kNoNode)
                visit(operand);
        if (plan_.nodes[node].picture != kNoNode)
            visit(plan_.nodes[node].picture);
    }

    int find(int node)
    {
        while (group_[node] != node)
            node = group_[node] = group_[group_[node]];
        return node;
    }

    void joinGroups()
    {
        const std::vector<int> level = levels();
        for (int i = 0; i < count(); ++i) {
            const PlanNode& node = plan_.nodes[i];
            if (!node.compute || !node.isPoint())
                continue;
            for (const int operand : node.operands)
                if (operand != kNoNode && joins(operand) && level[operand] == level[i])
                    group_[find(i)] = find(operand);
        }
    }

    /// A node's level is one above that of its operands behind an area node, theirs behind a point node.
    std::vector<int> levels() const
    {
        constexpr int kNobody = std::numeric_limits<int>::max();
        std::vector<int> level(plan_.nodes.size(), 0), latest(plan_.nodes.size(), kNobody);
        for (int i = 0; i < count(); ++i) {
            if (!plan_.nodes[i].compute)
                continue;
            forOperands(i, [&](int operand) {
                if (plan_.nodes[operand].compute)
                    level[i] = std::max(level[i], level[operand] + (plan_.nodes[i].isPoint() ? 0 : 1));
            });
        }
        // A picture out of nothing that nobody else wants goes with its first reader, and mostly needs no
        // memory there.
        std::vector<bool> wanted(plan_.nodes.size(), false);
        for (const int root : plan_.roots)
            wanted[root] = true;
        for (int i = count(); i-- > 0;) {
            if (!plan_.nodes[i].compute)
                continue;
            bool isSource = plan_.nodes[i].isPoint() && !plan_.nodes[i].keep && !wanted[i];
            forOperands(i, [&](int) { isSource = false; });
            if (isSource && latest[i] != kNobody)
                level[i] = std::max(level[i], latest[i]);
            forOperands(i, [&](int operand) {
                latest[operand] = std::min(latest[operand], level[i] - (plan_.nodes[i].isPoint() ? 0 : 1));
            });
        }
        return level;
    }

    bool joins(int operand) const { return plan_.nodes[operand].compute && plan_.nodes[operand].isPoint(); }

    void makeStages()
    {
        stageOf_.assign(plan_.nodes.size(), -1);
        for (int i = 0; i < count(); ++i) {
            if (!plan_.nodes[i].compute)
                continue;
            const int group = find(i);
            if (stageOf_[group] < 0) {
                stageOf_[group] = static_cast<int>(stages_.size());
                stages_.emplace_back();
            }
            stageOf_[i] = stageOf_[group];
            stages_[stageOf_[i]].nodes.push_back(i);
            stages_[stageOf_[i]].work += workOf(plan_.nodes[i]);
        }
    }

    /// Which results become whole pictures, and which stage reads which of them.
    void findWhole()
    {
        std::vector<bool> whole(plan_.nodes.size(), false);
        for (const int root : plan_.roots)
            whole[root] = true;
        for (int i = 0; i < count(); ++i) {
            if (stageOf_[i] < 0)
                continue;
            whole[i] = whole[i] || plan_.nodes[i].keep || !plan_.nodes[i].isPoint();
            forOperands(i, [&](int operand) {
                if (stageOf_[operand] == stageOf_[i])
                    return;
                whole[operand] = true;
                stages_[stageOf_[i]].reads.push_back(operand);
            });
        }
        for (Stage& stage : stages_) {
            std::sort(stage.reads.begin(), stage.reads.end());
            stage.reads.erase(std::unique(stage.reads.begin(), stage.reads.end()), stage.reads.end());
            for (const int node : stage.nodes)
                if (whole[node])
                    stage.writes.push_back(node);
        }
    }

    /// Depth first from one root after the other, so that the first picture comes early and little waits in
    /// memory.
    void orderStages()
    {
        std::vector<char> visited(stages_.size(), 0);
        for (const int root : plan_.roots) {
            if (stageOf_[root] >= 0)
                visit(stageOf_[root], visited);
            schedule_.stagesBefore.push_back(static_cast<int>(schedule_.stages.size()));
        }
    }

    void visit(int start, std::vector<char>& visited)
    {
        std::vector<std::pair<int, std::size_t>> path; // stage, reads already followed
        if (!std::exchange(visited[start], 1))
            path.emplace_back(start, 0);
        while (!path.empty()) {
            auto& [stage, next] = path.back();
            if (next == stages_[stage].reads.size()) {
                schedule_.work += stages_[stage].work;
                schedule_.stages.push_back(stages_[stage]);
                path.pop_back();
                continue;
            }
            const int from = stageOf_[stages_[stage].reads[next++]];
            if (from >= 0 && !std::exchange(visited[from], 1))
                path.emplace_back(from, 0);
        }
    }

    void countUses()
    {
        schedule_.uses.assign(plan_.nodes.size(), 0);
        for (const Stage& stage : schedule_.stages)
            for (const int node : stage.reads)
                ++schedule_.uses[node];
        for (const int root : plan_.roots)
            ++schedule_.uses[root];
    }

    int count() const { return static_cast<int>(plan_.nodes.size()); }

    const Plan& plan_;
    bool fuse_;
    std::vector<int> group_;   // by node: towards the first of its group
    std::vector<int> stageOf_; // by node; -1: not computed
    std::vector<Stage> stages_;
    Schedule schedule_;
};

} // namespace

std::uint64_t workOf(const PlanNode& node)
{
    const std::uint64_t pixels =
        static_cast<std::uint64_t>(node.width) * static_cast<std::uint64_t>(node.height);
    return pixels * (node.isPoint() ? 1 : kAreaWeight);
}

Schedule makeSchedule(const Plan& plan, bool fuse)
{
    return Scheduler(plan, fuse).make();
}

} // namespace vellor::cpu
