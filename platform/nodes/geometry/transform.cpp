#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

// A pixel of the result covers a parallelogram of the source. Along its shorter side a level of a pyramid of
// halved pictures fits it; along its longer side several samples are averaged. The passes before the last
// make the levels.

#ifndef VELLOR_TRANSFORM_STATE
#define VELLOR_TRANSFORM_STATE
namespace vellor::nodes {
namespace {

struct TransformState : State
{
    // Source position by result position, both from the middle, in shares of width and height.
    float uu = 1.0f, uv = 0.0f, vu = 0.0f, vv = 1.0f;
    float offsetU = 0.0f, offsetV = 0.0f;
    int levels = 0;     // halved pictures
    float blend = 0.0f; // of the last level over the one before
    int samples = 1;
    float stepU = 0.0f, stepV = 0.0f; // from one sample to the next
    bool wrap = true;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/geometry/transform.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/sampling-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void halve(const ImageView& source, const MutableImage& result, int y0, int y1)
{
    for (int c = 0; c < result.channels; ++c) {
        for (int y = y0; y < y1; ++y) {
            const float *upper = rowOf(source, c, 2 * y), *lower = rowOf(source, c, 2 * y + 1);
            float* to = rowOf(result, c, y);
            for (int x = 0; x < result.width; ++x)
                to[x] = ((upper[2 * x] + upper[2 * x + 1]) + (lower[2 * x] + lower[2 * x + 1])) * 0.25f;
        }
    }
}

/// 1 inside the picture, 0 outside, over a pixel's width.
HWY_INLINE F insideOf(F u, F v, const ImageView& image)
{
    const F x = F(0.5f) - absOf(u - F(0.5f)), y = F(0.5f) - absOf(v - F(0.5f));
    const F overX = clampOf(x * F(static_cast<float>(image.width)) + F(0.5f), F(0.0f), F(1.0f));
    const F overY = clampOf(y * F(static_cast<float>(image.height)) + F(0.5f), F(0.0f), F(1.0f));
    return overX * overY;
}

void transformPixels(const TransformState& state, const AreaJob& job, const ImageView& coarse,
                     const ImageView& fine, int x, int y)
{
    const int channels = job.result.channels;
    const F du = centresFrom(x, job.result.width) - F(0.5f), dv(centreOf(y, job.result.height) - 0.5f);
    const F u0 = du * F(state.uu) + dv * F(state.uv) + F(state.offsetU + 0.5f);
    const F v0 = du * F(state.vu) + dv * F(state.vv) + F(state.offsetV + 0.5f);
    F sums[kMaxChannels] = {F(0.0f), F(0.0f), F(0.0f), F(0.0f)};
    for (int s = 0; s < state.samples; ++s) {
        const float place = static_cast<float>(s) - 0.5f * static_cast<float>(state.samples - 1);
        const F u = u0 + F(place * state.stepU), v = v0 + F(place * state.stepV);
        const F weight = state.wrap ? F(1.0f) : insideOf(u, v, job.operands[0]);
        const BilinearTaps taps(coarse, u, v), fineTaps(fine, u, v);
        for (int c = 0; c < channels; ++c) {
            F value = taps.read(coarse.planes[c]);
            if (state.levels > 0)
                value = lerpOf(fineTaps.read(fine.planes[c]), value, F(state.blend));
            sums[c] += value * weight;
        }
    }
    for (int c = 0; c < channels; ++c)
        store(sums[c] * F(1.0f / static_cast<float>(state.samples)), rowOf(job.result, c, y) + x);
}

void transformArea(const AreaJob& job)
{
    const auto& state = static_cast<const TransformState&>(*job.state);
    if (job.pass < state.levels)
        return halve(job.pass == 0 ? job.operands[0] : job.scratch[job.pass - 1], job.result, job.y0, job.y1);
    const ImageView& coarse = state.levels > 0 ? job.scratch[state.levels - 1] : job.operands[0];
    const ImageView& fine = state.levels > 1 ? job.scratch[state.levels - 2] : job.operands[0];
    for (int y = job.y0; y < job.y1; ++y)
        for (int x = 0; x < job.result.width; x += kLanes)
            transformPixels(state, job, coarse, fine, x, y);
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(transformArea)

namespace {

/// Chooses level and samples for the source pixels that a result pixel covers.
void planSampling(TransformState& state, const ImageView& source, const Setup& setup)
{
    constexpr float kMostSamples = 16.0f;
    const float acrossU = state.uu / static_cast<float>(setup.width),
                acrossV = state.vu / static_cast<float>(setup.width);
    const float downU = state.uv / static_cast<float>(setup.height),
                downV = state.vv / static_cast<float>(setup.height);
    const auto lengthOf = [&](float u, float v) {
        const float x = u * static_cast<float>(source.width), y = v * static_cast<float>(source.height);
        return scalar::sqrtOf(x * x + y * y);
    };
    const float across = lengthOf(acrossU, acrossV), down = lengthOf(downU, downV);
    const float longer = std::max(across, down),
                shorter = std::max(std::min(across, down), longer / kMostSamples);
    const float ratio = longer / std::max(shorter, 1.0f);
    state.samples = held(static_cast<int>(ratio + 0.99f), 1, static_cast<int>(kMostSamples));
    const float share = 1.0f / static_cast<float>(state.samples);
    state.stepU = (across >= down ? acrossU : downU) * share;
    state.stepV = (across >= down ? acrossV : downV) * share;
    const float level = shorter > 1.0f ? scalar::log2Of(shorter) : 0.0f;
    int width = source.width, height = source.height;
    while (static_cast<float>(state.levels) < level && width % 2 == 0 && height % 2 == 0) {
        ++state.levels;
        width /= 2;
        height /= 2;
    }
    state.blend = state.levels > 0 ? held(level - static_cast<float>(state.levels - 1), 0.0f, 1.0f) : 0.0f;
}

std::unique_ptr<State> prepareTransform(const Setup& setup)
{
    auto state = std::make_unique<TransformState>();
    const ParameterValue* p = setup.parameters;
    const auto inverse = [](float scale) {
        const float size = std::max(scalar::absOf(scale), 1e-4f);
        return (scale < 0.0f ? -1.0f : 1.0f) / size;
    };
    const float tilesX = held(p[3].f[0], 1e-3f, 1024.0f), tilesY = held(p[3].f[1], 1e-3f, 1024.0f);
    const float scaleU = inverse(p[0].f[0]) * tilesX, scaleV = inverse(p[0].f[1]) * tilesY;
    const scalar::SinCos turn = scalar::sinCosOfTurns(p[1].f[0]);
    const float aspect = static_cast<float>(setup.width) / static_cast<float>(setup.height);
    // The result is turned clockwise: look back counterclockwise, in square units.
    state->uu = turn.cosine * scaleU;
    state->uv = turn.sine / aspect * scaleU;
    state->vu = -turn.sine * aspect * scaleV;
    state->vv = turn.cosine * scaleV;
    state->offsetU = -(p[2].f[0] * state->uu + p[2].f[1] * state->uv);
    state->offsetV = -(p[2].f[0] * state->vu + p[2].f[1] * state->vv);
    state->wrap = p[4].i[0] != 0;
    planSampling(*state, setup.operands[0], setup);
    return state;
}

std::vector<ScratchShape> transformScratch(const State* state, const Setup& setup)
{
    std::vector<ScratchShape> shapes;
    for (int i = 1; i <= static_cast<const TransformState*>(state)->levels; ++i)
        shapes.push_back({setup.operands[0].width >> i, setup.operands[0].height >> i, setup.channels});
    return shapes;
}

} // namespace

const NodeDeclaration transformNode{
    "transform",
    "Transform 2D",
    "Geometry",
    "Scales, turns, moves and repeats a picture around its middle. What becomes smaller is averaged, what "
    "becomes larger is "
    "interpolated.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to transform."}},
    {{"scale", ParameterType::Float2, {1, 1}, -8, 8, "Size in width and height; below 0 mirrors."},
     {"rotation", ParameterType::Float, {0.0}, -1, 1, "Turns the picture clockwise, in turns."},
     {"offset",
      ParameterType::Float2,
      {0, 0},
      -1,
      1,
      "Moves it right and down, in shares of width and height."},
     {"tiling", ParameterType::Float2, {1, 1}, 1, 32, "How often it repeats across and down."},
     {"wrap",
      ParameterType::Bool,
      {1},
      0,
      1,
      "Repeats the picture around itself; else there is 0 beyond its edges."}},
    prepareTransform,
    nullptr,
    runtransformArea,
    transformScratch};

} // namespace vellor::nodes
#endif
