#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

// A place is in shadow as far as the horizon towards the light covers the light. The horizon is the steepest
// rise to any place on the way. Close by, every pixel of the way is looked at; farther on, maxima over 2, 4,
// ... 32 pixels of the way, never more than an eighth of the distance, so that nothing on the way is missed.
// Each pass but the last makes the maxima over twice as many pixels. All pixels look at the same offsets.

#ifndef VELLOR_SHADOW_STATE
#define VELLOR_SHADOW_STATE
namespace vellor::nodes {
namespace {

constexpr int kWayLevels = 5; // maxima over 2^level pixels

struct ShadowSample
{
    int dx = 0, dy = 0;
    int level = 0;
    float steepness = 0.0f; // factor from a difference in height to a rise
};

struct ShadowState : State
{
    std::vector<ShadowSample> samples;
    std::array<std::array<int, 2>, kWayLevels> halves{}; // from a pixel to the second half of its maximum
    float lit = 0.0f, inverseSpan = 1.0f; // rises that leave all the light, and how fast it goes
    float darkness = 1.0f;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/surface/shadow.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

/// Pixels x to x + count - 1 of a row, which may lie anywhere; `line` takes a copy where they go around.
const float* pixelsOf(const ImageView& image, int x, int y, int count, float* line)
{
    const float* row = rowOf(image, 0, y);
    const int from = wrapped(x, image.width), read = (count + kLanes - 1) / kLanes * kLanes;
    if (from + read <= image.width)
        return row + from;
    copyWrapped(row, image.width, from, count, line);
    return line;
}

void widenMaxima(const ImageView& source, std::array<int, 2> half, const AreaJob& job)
{
    alignas(64) float line[kChunk + 16];
    for (int y = job.y0; y < job.y1; ++y) {
        for (int x = 0; x < source.width; x += kChunk) {
            const int count = std::min(kChunk, source.width - x);
            const float* own = rowOf(source, 0, y) + x;
            const float* other = pixelsOf(source, x + half[0], y + half[1], count, line);
            for (int i = 0; i < count; i += kLanes)
                store(maxOf(load(own + i), loadAt(other + i)), rowOf(job.result, 0, y) + x + i);
        }
    }
}

void shadowChunk(const ShadowState& state, const AreaJob& job, int x, int y, int count)
{
    alignas(64) float line[kChunk + 16], steepest[kChunk + 16];
    const float* height = rowOf(job.operands[0], 0, y) + x;
    for (int i = 0; i < count; i += kLanes)
        store(F(-1e30f), steepest + i);
    for (const ShadowSample& sample : state.samples) {
        const ImageView& maxima = sample.level == 0 ? job.operands[0] : job.scratch[sample.level - 1];
        const float* seen = pixelsOf(maxima, x + sample.dx, y + sample.dy, count, line);
        for (int i = 0; i < count; i += kLanes) {
            const F rise = (loadAt(seen + i) - load(height + i)) * F(sample.steepness);
            store(maxOf(load(steepest + i), rise), steepest + i);
        }
    }
    float* result = rowOf(job.result, 0, y) + x;
    for (int i = 0; i < count; i += kLanes) {
        const F covered =
            clampOf((load(steepest + i) - F(state.lit)) * F(state.inverseSpan), F(0.0f), F(1.0f));
        store(F(1.0f) - covered * F(state.darkness), result + i);
    }
}

void shadowArea(const AreaJob& job)
{
    const auto& state = static_cast<const ShadowState&>(*job.state);
    if (job.pass < kWayLevels)
        return widenMaxima(job.pass == 0 ? job.operands[0] : job.scratch[job.pass - 1],
                           state.halves[job.pass], job);
    for (int y = job.y0; y < job.y1; ++y)
        for (int x = 0; x < job.result.width && !job.stopped(); x += kChunk)
            shadowChunk(state, job, x, y, std::min(kChunk, job.result.width - x));
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(shadowArea)

/// The samples up to the distance from which the tallest place could still stand before the light.
static std::vector<ShadowSample> shadowSamples(const scalar::SinCos& way, float depth, float reach)
{
    std::vector<ShadowSample> samples;
    for (float distance = 1.0f; distance < reach + 1.0f;) {
        ShadowSample sample;
        while (sample.level < kWayLevels && static_cast<float>(16 << sample.level) <= distance)
            ++sample.level;
        sample.dx = static_cast<int>(scalar::roundOf(distance * way.cosine));
        sample.dy = static_cast<int>(scalar::roundOf(distance * way.sine));
        const auto window = static_cast<float>(1 << sample.level);
        const float along = static_cast<float>(sample.dx) * way.cosine +
                            static_cast<float>(sample.dy) * way.sine + 0.5f * (window - 1.0f);
        sample.steepness = depth / std::max(along, 0.5f);
        samples.push_back(sample);
        distance += window;
    }
    return samples;
}

static std::unique_ptr<State> prepareShadow(const Setup& setup)
{
    auto state = std::make_unique<ShadowState>();
    const ParameterValue* p = setup.parameters;
    const auto width = static_cast<float>(setup.width);
    const float depth = held(p[0].f[0], 0.0f, 1000.0f) * 0.01f * width; // in pixels
    const scalar::SinCos way = scalar::sinCosOfTurns(held(p[1].f[0], -1e4f, 1e4f));
    const float elevation = held(p[2].f[0], 0.002f, 0.248f), half = 0.5f * held(p[3].f[0], 0.0f, 0.25f);
    const auto riseOf = [](float turns) {
        return scalar::tanOf(held(turns, 0.0005f, 0.2495f) * 2.0f * scalar::kPi);
    };
    state->lit = riseOf(elevation - half);
    state->inverseSpan = 1.0f / std::max(riseOf(elevation + half) - state->lit, 1e-3f);
    state->darkness = held(p[4].f[0], 0.0f, 1.0f);
    state->samples = shadowSamples(way, depth, std::min(depth / state->lit, 2.0f * width));
    for (int level = 0; level < kWayLevels; ++level) {
        const auto half2 = static_cast<float>(1 << level);
        state->halves[level] = {static_cast<int>(scalar::roundOf(half2 * way.cosine)),
                                static_cast<int>(scalar::roundOf(half2 * way.sine))};
    }
    return state;
}

static std::vector<ScratchShape> shadowScratch(const State*, const Setup& setup)
{
    return std::vector<ScratchShape>(kWayLevels, {setup.width, setup.height, 1});
}

const NodeDeclaration shadowNode{
    "shadow",
    "Shadow",
    "Surface",
    "The shadows that a height map casts on itself in the light of a distant lamp, from the horizon in its "
    "direction: white in the light. Wraps around.",
    ResultChannels::Grey,
    Chance::None,
    {{"height", OperandChannels::Grey, true, "The height map, 0 to 1."}},
    {{"depth",
      ParameterType::Float,
      {5.0},
      0,
      50,
      "How far white stands above black, in hundredths of the picture's width."},
     {"angle",
      ParameterType::Float,
      {0.625},
      -1,
      1,
      "Where the light comes from, in turns clockwise from the right; 0.625 is the upper left."},
     {"elevation",
      ParameterType::Float,
      {0.08},
      0,
      0.25,
      "How high the light stands, in turns: 0 at the horizon, 0.25 overhead."},
     {"softness",
      ParameterType::Float,
      {0.02},
      0,
      0.25,
      "How wide the lamp looks from the surface, in turns."},
     {"darkness", ParameterType::Float, {1.0}, 0, 1, "How much light the shadows take away."}},
    prepareShadow,
    nullptr,
    runshadowArea,
    shadowScratch};

} // namespace vellor::nodes
#endif
