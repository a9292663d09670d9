#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

#include <vector>

// Places to read are the pixel's own, turned or scaled about the centre in equal steps. Blocks of pixels take
// as many steps as the longest way in them has pixels.

#ifndef VELLOR_RADIALBLUR_STATE
#define VELLOR_RADIALBLUR_STATE
namespace vellor::nodes {
namespace {

constexpr int kBlock = 64;
constexpr int kMostSamples = 256;

struct RadialBlurState : State
{
    bool spin = false;
    float amount = 0.0f;                  // turns, or share of the way to the centre
    float centreX = 0.0f, centreY = 0.0f; // in pixels
};

/// How a way from the centre is changed: a turn and a scale, as a complex number.
struct Turn
{
    float real, imaginary;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/neighbourhood/radialblur.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/sampling-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

/// The steps of a block whose farthest pixel is `distance` pixels away from the centre.
int fillTurns(const RadialBlurState& state, float distance, Turn* turns)
{
    const float way = scalar::absOf(state.amount) * distance * (state.spin ? 2.0f * scalar::kPi : 1.0f);
    const int samples = static_cast<int>(scalar::minOf(way, kMostSamples - 1.0f)) + 1;
    for (int s = 0; s < samples; ++s) {
        const float place = (static_cast<float>(s) + 0.5f) / static_cast<float>(samples);
        if (state.spin) {
            const scalar::SinCos turn = scalar::sinCosOfTurns((place - 0.5f) * state.amount);
            turns[s] = {turn.cosine, turn.sine};
        } else {
            turns[s] = {1.0f - place * state.amount, 0.0f};
        }
    }
    return samples;
}

void radialBlock(const RadialBlurState& state, const AreaJob& job, int x, int y, int count)
{
    const ImageView& source = job.operands[0];
    const float dy = static_cast<float>(y) + 0.5f - state.centreY;
    const float left = static_cast<float>(x) + 0.5f - state.centreX;
    const float right = left + static_cast<float>(count - 1);
    const float farX = scalar::maxOf(scalar::absOf(left), scalar::absOf(right));
    Turn turns[kMostSamples];
    const int samples = fillTurns(state, scalar::sqrtOf(farX * farX + dy * dy), turns);
    const F perWidth(1.0f / static_cast<float>(source.width)),
        perHeight(1.0f / static_cast<float>(source.height));
    for (int i = 0; i < count; i += kLanes) {
        const F dx = countFrom(left + static_cast<float>(i));
        F sums[kMaxChannels] = {F(0.0f), F(0.0f), F(0.0f), F(0.0f)};
        for (int s = 0; s < samples; ++s) {
            const F real(turns[s].real), imaginary(turns[s].imaginary);
            const F u = F(state.centreX) + (dx * real - F(dy) * imaginary);
            const F v = F(state.centreY) + (dx * imaginary + F(dy) * real);
            const BilinearTaps taps(source, u * perWidth, v * perHeight);
            for (int c = 0; c < job.result.channels; ++c)
                sums[c] += taps.read(source.planes[c]);
        }
        for (int c = 0; c < job.result.channels; ++c)
            store(sums[c] * F(1.0f / static_cast<float>(samples)), rowOf(job.result, c, y) + x + i);
    }
}

void radialBlurArea(const AreaJob& job)
{
    const auto& state = static_cast<const RadialBlurState&>(*job.state);
    for (int y = job.y0; y < job.y1; ++y)
        for (int x = 0; x < job.result.width && !job.stopped(); x += kBlock)
            radialBlock(state, job, x, y, std::min(kBlock, job.result.width - x));
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(radialBlurArea)

static std::unique_ptr<State> prepareRadialBlur(const Setup& setup)
{
    auto state = std::make_unique<RadialBlurState>();
    const ParameterValue* p = setup.parameters;
    state->spin = held(p[0].i[0], 0, 1) == 1;
    state->amount = held(p[1].f[0], -1.0f, 1.0f);
    state->centreX = held(p[2].f[0], -100.0f, 100.0f) * static_cast<float>(setup.width);
    state->centreY = held(p[2].f[1], -100.0f, 100.0f) * static_cast<float>(setup.height);
    return state;
}

const NodeDeclaration radialblurNode{
    "radialblur",
    "Radial Blur",
    "Neighbourhood",
    "The mean along the way to a centre, or along a circle around it. Wraps around.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to blur."}},
    {{"mode",
      ParameterType::Choice,
      {0},
      0,
      1,
      "Zoom: along the way to the centre; spin: along a circle.",
      {"zoom", "spin"}},
     {"amount",
      ParameterType::Float,
      {0.1},
      -1,
      1,
      "Zoom: the share of the way to the centre that is averaged, negative for outwards; spin: the arc in "
      "turns."},
     {"centre",
      ParameterType::Float2,
      {0.5, 0.5},
      0,
      1,
      "The centre, in shares of the picture's width and height."}},
    prepareRadialBlur,
    nullptr,
    runradialBlurArea};

} // namespace vellor::nodes
#endif
