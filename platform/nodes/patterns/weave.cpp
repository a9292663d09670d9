#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

#ifndef VELLOR_WEAVE_STATE
#define VELLOR_WEAVE_STATE
namespace vellor::nodes {
namespace {

enum class WeavePattern
{
    Plain,
    Twill,
    Basket,
    Satin,
    WarpTwill,
    WeftTwill,
    Herringbone,
    Sateen,
    EightSatin
};
/// Threads until a pattern repeats, both ways.
constexpr int kWeavePeriods[] = {2, 4, 4, 5, 4, 4, 8, 5, 8};
constexpr int kWeavePatterns = 9;
enum class WeaveOutput
{
    Height,
    Mask,
    Value,
    Direction,
    U,
    V
};

struct WeaveState : State
{
    float across = 16.0f, down = 16.0f; // threads
    WeavePattern pattern = WeavePattern::Plain;
    WeaveOutput output = WeaveOutput::Height;
    float width = 0.9f, depth = 0.5f, variation = 0.0f;
    float pixelX = 0.1f, pixelY = 0.1f; // in threads
    std::uint32_t seed = 0;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/patterns/weave.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

HWY_INLINE F modulo(F a, float b)
{
    return a -
           F(b) * floorOf(a * F(1.0f / b) + F(1e-3f)); // whole numbers: the small step saves from rounding
}

/// 1 where the vertical thread i passes over the horizontal thread j, else 0.
HWY_INLINE F verticalOver(WeavePattern pattern, F i, F j)
{
    switch (pattern) {
    case WeavePattern::Twill:
        return choose(modulo(i + j, 4.0f) < F(1.5f), F(1.0f), F(0.0f));
    case WeavePattern::Basket:
        return modulo(floorOf(i * F(0.5f)) + floorOf(j * F(0.5f)), 2.0f);
    case WeavePattern::Satin:
        return choose(modulo(i + i + j, 5.0f) < F(0.5f), F(0.0f), F(1.0f));
    case WeavePattern::WarpTwill:
        return choose(modulo(i + j, 4.0f) < F(2.5f), F(1.0f), F(0.0f));
    case WeavePattern::WeftTwill:
        return choose(modulo(i + j, 4.0f) < F(0.5f), F(1.0f), F(0.0f));
    case WeavePattern::Herringbone: {
        // Twill that turns back after every four threads: 0 1 2 3 3 2 1 0.
        const F k = modulo(i, 8.0f);
        return choose(modulo(minOf(k, F(7.0f) - k) + j, 4.0f) < F(1.5f), F(1.0f), F(0.0f));
    }
    case WeavePattern::Sateen:
        return choose(modulo(i + i + j, 5.0f) < F(0.5f), F(1.0f), F(0.0f));
    case WeavePattern::EightSatin:
        return choose(modulo(i * F(3.0f) + j, 8.0f) < F(0.5f), F(0.0f), F(1.0f));
    case WeavePattern::Plain:
        break;
    }
    return modulo(i + j, 2.0f);
}

/// How high a thread runs, 0 to 1: at crossings by who is above, smooth between. `along` is the position from
/// the crossing.
HWY_INLINE F courseOf(F here, F beside, F along)
{
    const F t = absOf(along);
    return lerpOf(here, beside, t * t * (F(3.0f) - F(2.0f) * t));
}

struct Thread
{
    F height, coverage, hash;
};

/// A thread's round section and what a pixel sees of its width.
HWY_INLINE Thread threadOf(const WeaveState& state, F aside, F course, U hash, float pixel)
{
    const F unit = unitOf(hash);
    const F t = aside * F(2.0f / state.width);
    const F round = sqrtOf(maxOf(F(1.0f) - t * t, F(0.0f)));
    const F top = F(state.depth) * course + F(1.0f - state.depth) * round;
    const F darker = F(1.0f) - F(state.variation) * unit;
    const F coverage =
        clampOf((F(0.5f * state.width) - absOf(aside)) * F(1.0f / pixel) + F(0.5f), F(0.0f), F(1.0f));
    // The lower thread keeps a little height, so that it stands out of the gaps.
    return {(F(0.15f) + F(0.85f) * top * (F(0.3f) + F(0.7f) * round)) * darker, coverage, unit};
}

/// 1 where the thread that runs the given way passes over the other one, else 0.
HWY_INLINE F passesOver(WeavePattern pattern, M vertical, F i, F j)
{
    const F over = verticalOver(pattern, i, j);
    return choose(vertical, over, F(1.0f) - over);
}

/// How many crossings on from (i, j), in steps of (stepI, stepJ), the thread stays above.
HWY_INLINE F floatFrom(WeavePattern pattern, M vertical, F i, F j, F stepI, F stepJ)
{
    F above(1.0f), count(0.0f);
    for (int k = 1; k < kWeavePeriods[static_cast<int>(pattern)]; ++k) {
        i += stepI;
        j += stepJ;
        above *= passesOver(pattern, vertical, i, j);
        count += above;
    }
    return count;
}

/// Where along its float, the way between two dives, the thread is that shows; 0 to 1, from the left and from
/// the top. `along` is the position from crossing (i, j).
HWY_INLINE F alongFloat(WeavePattern pattern, M vertical, F i, F j, F along)
{
    const F stepI = choose(vertical, F(0.0f), F(1.0f)), stepJ = F(1.0f) - stepI;
    // A thread that shows where it passes below belongs to the float that begins or ends beside.
    const F side = choose(along < F(0.0f), F(-1.0f), F(1.0f));
    const F moved = choose(passesOver(pattern, vertical, i, j) > F(0.5f), F(0.0f), side);
    const F fromI = i + moved * stepI, fromJ = j + moved * stepJ;
    const F before = floatFrom(pattern, vertical, fromI, fromJ, -stepI, -stepJ);
    const F after = floatFrom(pattern, vertical, fromI, fromJ, stepI, stepJ);
    return clampOf((before + along - moved + F(0.5f)) / (before + after + F(1.0f)), F(0.0f), F(1.0f));
}

HWY_INLINE F weaveAt(const WeaveState& state, F u, F v)
{
    const F x = u * F(state.across), y = v * F(state.down);
    const F i = floorOf(x), j = floorOf(y);
    const F a = x - i - F(0.5f), b = y - j - F(0.5f);
    const F besideI = i + choose(a < F(0.0f), F(-1.0f), F(1.0f)),
            besideJ = j + choose(b < F(0.0f), F(-1.0f), F(1.0f));
    const F over = verticalOver(state.pattern, i, j);
    const F vertical = courseOf(over, verticalOver(state.pattern, i, besideJ), b);
    const F horizontal = courseOf(F(1.0f) - over, F(1.0f) - verticalOver(state.pattern, besideI, j), a);
    const U column = toInteger(i - F(state.across) * floorOf(i / F(state.across)));
    const U row = toInteger(j - F(state.down) * floorOf(j / F(state.down)));
    const Thread down = threadOf(state, a, vertical, hashLattice(column, U(1u), U(state.seed)), state.pixelX);
    const Thread across =
        threadOf(state, b, horizontal, hashLattice(row, U(2u), U(state.seed)), state.pixelY);
    const F downHeight = down.height * down.coverage, acrossHeight = across.height * across.coverage;
    const M isDown = downHeight > acrossHeight;
    switch (state.output) {
    case WeaveOutput::Mask:
        return maxOf(down.coverage, across.coverage);
    case WeaveOutput::Value:
        return choose(isDown, down.hash, across.hash);
    case WeaveOutput::Direction:
        return choose(isDown, F(1.0f), F(0.0f));
    case WeaveOutput::U:
        return alongFloat(state.pattern, isDown, i, j, choose(isDown, b, a));
    case WeaveOutput::V:
        return clampOf(choose(isDown, a, b) * F(1.0f / state.width) + F(0.5f), F(0.0f), F(1.0f));
    case WeaveOutput::Height:
        break;
    }
    return maxOf(downHeight, acrossHeight);
}

void weaveRow(const RowJob& job)
{
    const auto& state = static_cast<const WeaveState&>(*job.state);
    constexpr float kSamples[4][2] = {
        {-0.375f, -0.125f}, {0.125f, -0.375f}, {0.375f, 0.125f}, {-0.125f, 0.375f}};
    const float v = centreOf(job.y, job.height);
    const float pixelU = 1.0f / static_cast<float>(job.width), pixelV = 1.0f / static_cast<float>(job.height);
    for (int i = 0; i < job.count; i += kLanes) {
        const F u = centresFrom(job.x + i, job.width);
        F sum(0.0f);
        for (const auto& sample : kSamples)
            sum += weaveAt(state, u + F(sample[0] * pixelU), F(v + sample[1] * pixelV));
        store(sum * F(0.25f), job.result[0] + i);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(weaveRow)

static std::unique_ptr<State> prepareWeave(const Setup& setup)
{
    auto state = std::make_unique<WeaveState>();
    const ParameterValue* p = setup.parameters;
    state->pattern = static_cast<WeavePattern>(held(p[1].i[0], 0, kWeavePatterns - 1));
    // Whole repeats of the pattern, so that it tiles.
    const int period = kWeavePeriods[static_cast<int>(state->pattern)];
    const CellCount count = cellCount(p[0], setup, 2048);
    state->across = static_cast<float>((count.across + period - 1) / period * period);
    state->down = static_cast<float>((count.down + period - 1) / period * period);
    state->width = held(p[2].f[0], 0.05f, 1.0f);
    state->depth = held(p[3].f[0], 0.0f, 1.0f);
    state->variation = held(p[4].f[0], 0.0f, 1.0f);
    state->output = static_cast<WeaveOutput>(held(p[5].i[0], 0, 5));
    state->pixelX = state->across / static_cast<float>(setup.width);
    state->pixelY = state->down / static_cast<float>(setup.height);
    state->seed = scalar::mixBits(static_cast<std::uint32_t>(setup.seed) + 0x299f31d0u);
    return state;
}

const NodeDeclaration weaveNode{
    "weave",
    "Weave",
    "Patterns",
    "Round threads that run over and under each other, for cloth. The same parameters with another output "
    "give the matching "
    "masks, random values and positions on the threads.",
    ResultChannels::Grey,
    Chance::Seeded,
    {},
    {{"threads",
      ParameterType::Int2,
      {16, 0},
      2,
      512,
      "Threads across and down, taken up to whole repeats of the pattern; 0 down keeps crossings square."},
     {"pattern",
      ParameterType::Choice,
      {0},
      0,
      8,
      "Plain: one over, one under; twill: two over, two under, moved by one in each row; basket: pairs; "
      "satin: "
      "vertical threads four over, one under; warptwill and wefttwill: three over, one under, of vertical "
      "and of "
      "horizontal threads, as in denim; herringbone: twill that turns back every four threads; sateen: "
      "horizontal "
      "threads four over, one under; eightsatin: vertical threads seven over, one under.",
      {"plain", "twill", "basket", "satin", "warptwill", "wefttwill", "herringbone", "sateen", "eightsatin"}},
     {"width", ParameterType::Float, {0.9}, 0, 1, "A thread's width; the rest is gap."},
     {"depth",
      ParameterType::Float,
      {0.5},
      0,
      1,
      "How much of the height the up and down of the threads takes."},
     {"variation", ParameterType::Float, {0.1}, 0, 1, "How much lower threads lie by chance."},
     {"output",
      ParameterType::Choice,
      {0},
      0,
      5,
      "What to draw: height is the relief; mask is white on threads; value is a random grey for each thread; "
      "direction is white where a vertical thread is on top; u runs along the thread on top from where it "
      "comes up to "
      "where it dives, to the right or down; v runs across it.",
      {"height", "mask", "value", "direction", "u", "v"}}},
    prepareWeave,
    runweaveRow};

} // namespace vellor::nodes
#endif
