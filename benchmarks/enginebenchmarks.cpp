// The engine by itself: everything that a package has to give, a material of 60 nodes with what its size, its
// changes and its memory come to, and a chain of point nodes beside the memory traffic that no engine of
// whole pictures could do without.

#include "applications/player/description/inputvalue.h"
#include "benchmarks/comparison.h"
#include "benchmarks/enginealone.h"
#include "benchmarks/packages.h"

#include <vellor/cpuengine.h>

#include <QtGlobal>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace {

using Zph::Applications::Player::InputValue;

constexpr int kTurns = 9;
constexpr int kWarmUps = 40; // until the engine's cache is full

// Indexes of inputs: the order of the authoring file.
constexpr int kOutputSize = 0;
constexpr int kChainSlider = 1;
constexpr int kGloss = 1, kSoil = 2;

void setSize(EngineAlone& engine, std::int64_t pixels)
{
    const int exponent = std::ilogb(pixels);
    engine.push(kOutputSize, VELLOR_TYPE_INTEGER2, InputValue::fromInts(exponent, exponent));
}

/// Every picture of the bricks, nothing cached; beside it the same on one thread.
void allBricks(benchmark::State& state)
{
    const Packages::Linked linked(Packages::path("bricks"));
    EngineAlone one(linked.binary(), 1), several(linked.binary(), quint32(state.range(1)));
    const auto compute = [&](EngineAlone& engine) {
        engine.restart();
        setSize(engine, state.range(0));
        const EngineAlone::Uids outputs = engine.pictures();
        return Comparison::time([&] { engine.generate(outputs); });
    };
    compute(one);
    compute(several);
    Comparison comparison(state, "one thread");
    for (auto turn : state) {
        const Span rival = compute(one);
        comparison.add(compute(several), rival);
    }
}

double residentMegabytes()
{
    double pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages;
    return pages * 4096 / 1048576;
}

/// The greatest memory that the process has had since the last call, in MB.
double peakMegabytes()
{
    double peak = 0;
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind("VmHWM:", 0) == 0)
            peak = std::stod(line.substr(6)) / 1024;
    std::ofstream("/proc/self/clear_refs") << "5";
    return peak;
}

/// All six outputs of the material with nothing cached; beside it the same on one thread. The label has the
/// memory at the peak and the sum of the outputs: 4 + 8 + 1 + 1 + 1 + 2 bytes a pixel.
void material(benchmark::State& state)
{
    const Packages::Linked linked(Packages::path("material60"));
    double peak = 0;
    const auto compute = [&](quint32 threads) {
        EngineAlone engine(linked.binary(), threads);
        setSize(engine, state.range(0));
        const EngineAlone::Uids outputs = engine.pictures();
        return Comparison::time([&] { engine.generate(outputs); });
    };
    Comparison comparison(state, "");
    for (auto turn : state) {
        const Span rival = compute(1);
        const double before = residentMegabytes();
        peakMegabytes();
        const Span figure = compute(quint32(state.range(1)));
        peak = std::max(peak, peakMegabytes() - before);
        comparison.add(figure, rival);
    }
    const double outputs = 17e-6 * double(state.range(0) * state.range(0));
    comparison.setRival("one thread; memory " + std::to_string(int(peak)) + " MB, outputs " +
                        std::to_string(int(outputs + 0.5)) + " MB");
}

/// One input of the material changes; beside it the whole material. range(1): the input.
void lateChange(benchmark::State& state)
{
    const Packages::Linked linked(Packages::path("material60"));
    EngineAlone engine(linked.binary(), 2);
    setSize(engine, state.range(0));
    const EngineAlone::Uids outputs = engine.pictures();
    const int input = int(state.range(1));
    float value = 0.3f;
    const auto change = [&] {
        engine.push(input, VELLOR_TYPE_FLOAT, InputValue::fromFloats(value += 0.003f));
        return Comparison::time([&] { engine.generate(outputs); });
    };
    Comparison comparison(state, input == kGloss ? "the whole; 1 node of 60" : "the whole; 4 nodes of 60");
    for (auto turn : state) {
        engine.restart();
        setSize(engine, state.range(0));
        const Span whole = Comparison::time([&] { engine.generate(outputs); });
        for (int warmUp = 0; warmUp < 3; ++warmUp)
            change();
        comparison.add(change(), whole);
    }
}

/// Copies as much as `threads` threads can at once, a share each.
Span copyTime(std::vector<quint8>& to, const std::vector<quint8>& from, int threads)
{
    const std::size_t share = from.size() / std::size_t(threads);
    const auto copy = [&](int thread) {
        std::memcpy(to.data() + share * std::size_t(thread), from.data() + share * std::size_t(thread),
                    share);
    };
    return Comparison::time([&] {
        std::vector<std::thread> others;
        for (int thread = 1; thread < threads; ++thread)
            others.emplace_back(copy, thread);
        copy(0);
        for (std::thread& other : others)
            other.join();
        benchmark::ClobberMemory();
    });
}

/// Eight point nodes over a picture that is cached. What must move: the cached picture in, 8-bit pixels
/// out, and these in and out again for the host: 4 + 1 + 1 + 1 bytes a pixel, where a copy of n bytes moves
/// 2n.
void pointChain(benchmark::State& state)
{
    const int threads = int(state.range(1));
    const Packages::Linked linked(Packages::path("pointchain"));
    EngineAlone engine(linked.binary(), quint32(threads), state.range(2) ? 0 : VELLOR_CPU_NO_FUSION);
    setSize(engine, state.range(0));
    const EngineAlone::Uids outputs = engine.pictures();
    engine.generate(outputs);
    const std::size_t copied = std::size_t(state.range(0) * state.range(0)) * 7 / 2;
    const std::vector<quint8> from(copied, 1);
    std::vector<quint8> to(copied);
    Comparison comparison(state, "memcpy of the bytes that must move");
    float value = 0.1f;
    const auto change = [&] {
        engine.push(kChainSlider, VELLOR_TYPE_FLOAT, InputValue::fromFloats(value += 0.001f));
        return Comparison::time([&] { engine.generate(outputs); });
    };
    for (int turn = 0; turn < kWarmUps; ++turn)
        change();
    for (auto turn : state) {
        const Span chain = change();
        comparison.add(chain, copyTime(to, from, threads));
    }
}

BENCHMARK(allBricks)
    ->Name("engine, all bricks outputs")
    ->ArgNames({"", "threads"})
    ->ArgsProduct({{512, 1024, 2048}, {2}})
    ->Iterations(5)
    ->UseManualTime();
BENCHMARK(material)
    ->Name("engine, material of 60 nodes")
    ->ArgNames({"", "threads"})
    ->ArgsProduct({{256, 512, 1024, 2048}, {2}})
    ->Iterations(3)
    ->UseManualTime();
BENCHMARK(material)
    ->Name("engine, material of 60 nodes")
    ->ArgNames({"", "threads"})
    ->ArgsProduct({{4096, 8192}, {2}})
    ->Iterations(1)
    ->UseManualTime();
BENCHMARK(lateChange)
    ->Name("engine, material, change of gloss or soil")
    ->ArgNames({"", "input"})
    ->ArgsProduct({{2048}, {kGloss, kSoil}})
    ->Iterations(3)
    ->UseManualTime();
BENCHMARK(pointChain)
    ->Name("engine, chain of 8 point nodes")
    ->ArgNames({"", "threads", "fused"})
    ->ArgsProduct({{2048}, {1, 2}, {1, 0}})
    ->Iterations(3 * kTurns)
    ->UseManualTime();

} // namespace
