// How soon every node kind gives way to a stop that comes at some moment of its work: as its parameters are,
// and with all numbers among them as great as they are meant to be.

#include "benchmarks/operations/rivals.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <ctime>
#include <mutex>
#include <random>
#include <thread>

namespace {

using vellor::nodes::NodeDeclaration;
using vellor::nodes::OperandChannels;
using vellor::nodes::ParameterType;
using vellor::nodes::ResultChannels;
using Clock = std::chrono::steady_clock;

constexpr int kLeast = 3, kMost = 7; // stops of each kind
constexpr double kBudget =
    1000.0; // milliseconds: how long the runs before the stops of a kind may take together
constexpr double kLongest = 1000.0; // milliseconds that a kind is left to work

/// A graph with noise for the operands of all kinds.
struct Bench
{
    explicit Bench(int threads)
        : graph(kSide, kSide, threads), grey(addMatrix(graph, testPicture(1))),
          colour(addMatrix(graph, testPicture(4)))
    {
    }

    OperationGraph graph;
    int grey, colour;
};

/// The kind by itself; -1 for one that needs more than operands.
int addKind(Bench& bench, const NodeDeclaration& kind, bool extreme)
{
    std::vector<Setting> settings;
    for (const auto& parameter : kind.parameters) {
        if (parameter.type == ParameterType::PixelProgram)
            return -1;
        if (extreme && parameter.type <= ParameterType::Int4)
            settings.emplace_back(parameter.name, parameter.maximum);
    }
    const int channels = kind.result == ResultChannels::Colour ? 4 : 1;
    std::vector<int> operands;
    for (const auto& operand : kind.operands)
        operands.push_back(operand.channels == OperandChannels::Colour ? bench.colour : bench.grey);
    return bench.graph.addNode(kind.name, channels, operands, settings);
}

/// From a stop after `delay` milliseconds until the engine is back; negative where it was back before. The
/// processor time is that of all threads: a machine that others use holds the clock up.
Span stopAfter(OperationGraph& graph, int node, double delay)
{
    Clock::time_point stopped;
    std::clock_t stoppedProcessor = 0;
    std::mutex mutex;
    std::condition_variable over;
    bool done = false;
    std::thread other([&] {
        std::unique_lock lock(mutex);
        if (over.wait_for(lock, std::chrono::duration<double, std::milli>(delay), [&] { return done; }))
            return;
        stopped = Clock::now();
        stoppedProcessor = std::clock();
        graph.stop();
    });
    const bool whole = graph.tryRun(node);
    const auto back = Clock::now();
    const std::clock_t backProcessor = std::clock();
    {
        const std::lock_guard lock(mutex);
        done = true;
    }
    over.notify_one();
    other.join();
    if (whole)
        return {-1.0, -1.0};
    return {std::chrono::duration<double, std::milli>(back - stopped).count(),
            1000.0 * double(backProcessor - stoppedProcessor) / CLOCKS_PER_SEC};
}

/// Stops at random moments of equal parts of the work; of slow kinds fewer.
std::vector<Span> latencies(Bench& bench, const NodeDeclaration& kind, bool extreme)
{
    const int node = addKind(bench, kind, extreme);
    std::vector<Span> times;
    if (node < 0)
        return times;
    const double whole =
        Comparison::time([&] { times.push_back(stopAfter(bench.graph, node, kLongest)); }).clock;
    if (times.back().clock < 0.0)
        times.clear();
    std::mt19937 random(1);
    const int stops = std::clamp(int(2.0 * kBudget / whole), kLeast, kMost);
    for (int i = 0; i < stops; ++i) {
        const double delay = whole * (i + std::uniform_real_distribution<double>()(random)) / stops;
        if (const Span time = stopAfter(bench.graph, node, delay); time.clock >= 0.0)
            times.push_back(time);
    }
    return times;
}

bool less(const Span& a, const Span& b)
{
    return a.processor < b.processor;
}

/// The median over all kinds, beside the worst.
void stop(benchmark::State& state)
{
    Comparison comparison(state, "");
    for (auto turn : state) {
        Span longest;
        std::string slowest;
        std::vector<Span> all;
        Bench bench(int(state.range(0)));
        for (const NodeDeclaration* kind : vellor::nodes::allNodes()) {
            const std::vector<Span> times = latencies(bench, *kind, state.range(1) != 0);
            if (times.empty())
                continue;
            all.insert(all.end(), times.begin(), times.end());
            const Span worst = *std::max_element(times.begin(), times.end(), less);
            if (worst.processor > 20.0 * double(state.range(0)))
                std::fprintf(stderr, "%s: stopped within %.1f ms, %.1f ms of processors\n", kind->name,
                             worst.clock, worst.processor);
            if (less(longest, worst)) {
                longest = worst;
                slowest = kind->name;
            }
        }
        std::nth_element(all.begin(), all.begin() + std::ptrdiff_t(all.size() / 2), all.end(), less);
        comparison.add(all[all.size() / 2], longest);
        comparison.setRival("the worst of all kinds, " + slowest);
    }
}

const bool registered = [] {
    benchmark::RegisterBenchmark("stop at any moment, all kinds", stop)
        ->ArgNames({"threads", "extreme"})
        ->Args({2, 0})
        ->Args({2, 1})
        ->Iterations(1)
        ->UseManualTime();
    return true;
}();

} // namespace
