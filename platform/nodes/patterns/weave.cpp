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
    Satin
};
enum class WeaveOutput
{
    Height,
    Mask,
    Value,
    Direction
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
    state->pattern = static_cast<WeavePattern>(held(p[1].i[0], 0, 3));
    // Whole repeats of the pattern, so that it tiles.
    constexpr int kPeriods[] = {2, 4, 4, 5};
    const int period = kPeriods[static_cast<int>(state->pattern)];
    const CellCount count = cellCount(p[0], setup, 2048);
    state->across = static_cast<float>((count.across + period - 1) / period * period);
    state->down = static_cast<float>((count.down + period - 1) / period * period);
    state->width = held(p[2].f[0], 0.05f, 1.0f);
    state->depth = held(p[3].f[0], 0.0f, 1.0f);
    state->variation = held(p[4].f[0], 0.0f, 1.0f);
    state->output = static_cast<WeaveOutput>(held(p[5].i[0], 0, 3));
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
    "masks and random values.",
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
      3,
      "Plain: one over, one under; twill: two over, two under, moved by one in each row; basket: pairs; "
      "satin: four over, one "
      "under.",
      {"plain", "twill", "basket", "satin"}},
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
      3,
      "What to draw: height is the relief; mask is white on threads; value is a random grey for each thread; "
      "direction is white "
      "where a vertical thread is on top.",
      {"height", "mask", "value", "direction"}}},
    prepareWeave,
    runweaveRow};

} // namespace vellor::nodes
#endif
