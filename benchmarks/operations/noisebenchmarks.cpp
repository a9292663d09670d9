// Noise, and patterns that chance draws, in cycles of the processor's time-stamp counter for a pixel: 2048
// squared, cells of 32 pixels, which tile. Beside them stands what the fastest noise library known reaches
// there on one thread with its best instruction set; that was measured elsewhere.

#include "benchmarks/operations/rivals.h"

#ifdef __x86_64__
#include <x86intrin.h>

#include <algorithm>
#include <chrono>

namespace {

constexpr int kNoiseSide = 2048;
constexpr int kPasses = 5; // in each turn

struct NoiseFigure
{
    const char* name;
    const char* kind;
    std::vector<Setting> settings;
    double aim = 0;   // cycles for a pixel; 0: none
    double known = 0; // cycles of a noise library
};

const std::vector<NoiseFigure>& figures()
{
    const Setting cells("scale", 64), wide("scale", 8), octaves("octaves", 8);
    const Setting one("octaves", 1);
    static const std::vector<NoiseFigure> all = {
        {"perlin", "perlin", {cells, one}, 2.8, 3.3},
        {"simplex", "simplex", {cells, one}, 3.6, 4.0},
        {"value", "valuenoise", {cells, one}, 2.1, 2.5},
        {"cellular f1", "cellular", {cells}, 10, 15},
        {"cellular f2-f1", "cellular", {cells, Setting("output", 2)}},
        {"cellular value", "cellular", {cells, Setting("output", 3)}},
        {"cellular edge", "cellular", {cells, Setting("output", 4)}},
        {"perlin, 8 octaves", "perlin", {cells, octaves}, 22, 26},
        {"perlin, 8 octaves from cells of 256 pixels, all drawn", "perlin", {wide, octaves}, 22, 26},
        {"perlin, 8 octaves ridged", "perlin", {wide, octaves, Setting("mode", 1)}},
        {"simplex, 8 octaves", "simplex", {wide, octaves}},
        {"value, 8 octaves", "valuenoise", {wide, octaves}},
        {"perlin, warped", "perlin", {cells, one, Setting("warp", 1)}},
        {"whitenoise", "whitenoise", {}},
        {"cracks, 5 pieces across", "cracks", {}, 60},
        {"cracks, 50 pieces across", "cracks", {Setting("cells", 50)}},
        {"knit, 12 stitches across", "knit", {}, 60},
        {"knit, 200 stitches across", "knit", {Setting("stitches", 200)}},
        {"weave, twill of 16 threads across", "weave", {Setting("pattern", 1)}},
        {"uniform, which is the cost of writing", "uniform", {}},
    };
    return all;
}

/// Ticks of the time-stamp counter in a millisecond.
double ticksPerMillisecond()
{
    const unsigned long long start = __rdtsc();
    const Span time = Comparison::time([] {
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(50);
        while (std::chrono::steady_clock::now() < end) {
        }
    });
    return double(__rdtsc() - start) / time.clock;
}

/// Counter "cycles": for a pixel, the median over turns, of the time that the processor spent here: other
/// programs that share it do not count.
void cycles(benchmark::State& state, const NoiseFigure& figure)
{
    static const double ticks = ticksPerMillisecond();
    OperationGraph graph(kNoiseSide, kNoiseSide, 1);
    const int node = graph.addNode(figure.kind, 1, {}, figure.settings);
    graph.run(node);
    std::vector<double> clock, processor;
    for (auto whole : state)
        takeTurns([&] {
            const Span time = Comparison::time([&] {
                for (int i = 0; i < kPasses; ++i)
                    graph.run(node);
            });
            state.SetIterationTime(time.clock / 1000.0);
            clock.push_back(time.clock / kPasses);
            processor.push_back(time.processor / kPasses);
        });
    const auto median = [](std::vector<double>& times) {
        std::nth_element(times.begin(), times.begin() + std::ptrdiff_t(times.size() / 2), times.end());
        return times[times.size() / 2];
    };
    state.counters["ms"] = median(clock);
    state.counters["cycles"] = median(processor) * ticks / (double(kNoiseSide) * kNoiseSide);
    if (figure.aim > 0)
        state.counters["aim"] = -figure.aim;
    if (figure.known > 0)
        state.counters["known"] = figure.known;
}

/// One thread's time over two threads' time.
void scaling(benchmark::State& state, const NoiseFigure& figure)
{
    OperationGraph graph(kNoiseSide, kNoiseSide, 1);
    const int node = graph.addNode(figure.kind, 1, {}, figure.settings);
    const auto timesOn = [&](int threads) {
        graph.setThreads(threads);
        for (int i = 0; i < kPasses; ++i)
            graph.run(node);
    };
    compare(
        state, "one thread", Aim::AtLeast, 1.8, [&] { timesOn(2); }, [&] { timesOn(1); });
}

const bool registered = [] {
    for (const NoiseFigure& figure : figures()) {
        const std::string name = std::string("noise, ") + figure.name;
        const auto measure = [&figure](benchmark::State& state) {
            state.range(0) == 1 ? cycles(state, figure) : scaling(state, figure);
        };
        auto* benchmark = benchmark::RegisterBenchmark(name.c_str(), measure)->ArgName("threads")->Arg(1);
        if (figure.aim > 0)
            benchmark->Arg(2);
        benchmark->Iterations(1)->UseManualTime();
    }
    return true;
}();

} // namespace
#endif
