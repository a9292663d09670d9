// Slider to picture: from the change of an input until the views have painted, beside the engine alone doing
// the same generation.

#include "applications/player/tweaks/tweakbase.h"
#include "benchmarks/comparison.h"
#include "benchmarks/openwindow.h"
#include "benchmarks/packages.h"

#include <cmath>
#include <utility>

namespace {

using Zph::Applications::Player::InputValue;
using Zph::Applications::Player::TweakBase;

constexpr int kTurns = 15;
const QStringList kEveryOutput = {"Base Color", "Normal", "Roughness", "Height", "Ambient Occlusion"};

/// A slider that is dragged is past the first turns, in which the engine's cache fills up.
int warmUps(std::int64_t size)
{
    return size > 1024 ? 5 : 80;
}

/// Two hosts of one engine, the window and the bare one, with the same values in both.
class Pair
{
public:
    Pair() : m_window(Packages::path("bricks")), m_alone(Packages::Linked(Packages::path("bricks")).binary())
    {
    }

    OpenWindow& window() { return m_window; }

    /// What the window took, and the engine alone.
    std::pair<Span, Span> change(TweakBase& tweak, const InputValue& value)
    {
        const Span window = m_window.change(tweak, value);
        m_alone.push(tweak.index(), tweak.type(), value);
        const EngineAlone::Uids outputs = m_window.shownOutputs();
        return {window, Comparison::time([&] { m_alone.generate(outputs); })};
    }

    void setSize(int exponent)
    {
        TweakBase& size = m_window.tweak("$outputsize");
        const InputValue value = InputValue::fromInts(exponent, exponent);
        if (!size.value().equals(value, 2))
            m_window.change(size, value);
        m_alone.push(size.index(), size.type(), value);
        m_alone.generate(m_window.shownOutputs());
    }

private:
    OpenWindow m_window;
    EngineAlone m_alone;
};

void sliderToPicture(benchmark::State& state, const QString& input, float from, float step,
                     const QStringList& outputs)
{
    Pair pair;
    pair.window().showOutputs(outputs);
    pair.setSize(std::ilogb(state.range(0)));
    TweakBase& tweak = pair.window().tweak(input);
    const auto next = [&] { return InputValue::fromFloats(from += step); }; // in no cache yet
    for (int turn = 0; turn < warmUps(state.range(0)); ++turn)
        pair.change(tweak, next());
    Comparison comparison(state, "the engine alone");
    for (auto turn : state) {
        const auto [window, alone] = pair.change(tweak, next());
        comparison.add(window, alone);
    }
}

void oneOutput(benchmark::State& state)
{
    sliderToPicture(state, "dirt", 0.3f, 0.01f, {"Base Color"});
}

void oneOfAllOutputs(benchmark::State& state)
{
    sliderToPicture(state, "joint", 0.1f, 0.002f, {"Base Color"});
}

void allOutputs(benchmark::State& state)
{
    sliderToPicture(state, "joint", 0.1f, 0.002f, kEveryOutput);
}

void atBothSizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Arg(512)->Arg(2048)->Iterations(kTurns)->UseManualTime();
}

BENCHMARK(oneOutput)->Name("slider, touches one output")->Apply(atBothSizes);
BENCHMARK(oneOfAllOutputs)->Name("slider, touches all, one is shown")->Apply(atBothSizes);
BENCHMARK(allOutputs)->Name("slider, touches all, all are shown")->Apply(atBothSizes);

} // namespace
