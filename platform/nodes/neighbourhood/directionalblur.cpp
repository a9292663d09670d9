#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

// The mean along a line in two passes: the first averages short runs of neighbours, the second averages such
// runs end to end. Some tens of samples then do the work of hundreds.

#ifndef VELLOR_DIRECTIONALBLUR_STATE
#define VELLOR_DIRECTIONALBLUR_STATE
namespace vellor::nodes {
namespace {

struct DirectionalBlurState : State
{
    std::array<int, 2> samples{1, 1};
    std::array<float, 2> stepX{}, stepY{}; // pixels from one sample to the next
    std::array<float, 2> first{};          // place of the first sample, in steps from the pixel
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/neighbourhood/directionalblur.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

/// Adds pixels from (x + dx, y + dy) on, interpolated, to sums. Every pixel of a row is moved alike, so rows
/// are read in one.
void addMoved(const ImageView& source, int channel, int x, int y, float dx, float dy, int count, float* sums)
{
    const float left = scalar::floorOf(dx), top = scalar::floorOf(dy);
    const F fx(dx - left), fy(dy - top);
    alignas(64) float upper[kChunk + 32], lower[kChunk + 32];
    const int fromX = x + static_cast<int>(left), fromY = y + static_cast<int>(top);
    copyWrapped(rowOf(source, channel, fromY), source.width, fromX, count + 1, upper);
    copyWrapped(rowOf(source, channel, fromY + 1), source.width, fromX, count + 1, lower);
    for (int i = 0; i < count; i += kLanes) {
        const F above = lerpOf(loadAt(upper + i), loadAt(upper + i + 1), fx);
        const F below = lerpOf(loadAt(lower + i), loadAt(lower + i + 1), fx);
        store(load(sums + i) + lerpOf(above, below, fy), sums + i);
    }
}

void directionalBlurArea(const AreaJob& job)
{
    const auto& state = static_cast<const DirectionalBlurState&>(*job.state);
    const ImageView& source = job.pass == 0 ? job.operands[0] : job.scratch[0];
    const int samples = state.samples[job.pass];
    for (int c = 0; c < job.result.channels; ++c) {
        for (int y = job.y0; y < job.y1; ++y) {
            for (int x = 0; x < job.result.width && !job.stopped(); x += kChunk) {
                const int count = std::min(kChunk, job.result.width - x);
                float* sums = rowOf(job.result, c, y) + x;
                for (int i = 0; i < count; i += kLanes)
                    store(F(0.0f), sums + i);
                for (int s = 0; s < samples; ++s) {
                    const float place = state.first[job.pass] + static_cast<float>(s);
                    addMoved(source, c, x, y, place * state.stepX[job.pass], place * state.stepY[job.pass],
                             count, sums);
                }
                for (int i = 0; i < count; i += kLanes)
                    store(load(sums + i) * F(1.0f / static_cast<float>(samples)), sums + i);
            }
        }
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(directionalBlurArea)

static std::unique_ptr<State> prepareDirectionalBlur(const Setup& setup)
{
    auto state = std::make_unique<DirectionalBlurState>();
    const float length =
        held(setup.parameters[0].f[0], 0.0f, 1000.0f) * 0.001f * static_cast<float>(setup.width);
    const scalar::SinCos turn = scalar::sinCosOfTurns(held(setup.parameters[1].f[0], -1e4f, 1e4f));
    const int needed = std::max(static_cast<int>(length + 0.999f), 1);
    // Equal numbers of samples in both passes take the fewest; below eight, one pass does.
    int first = needed;
    if (needed > 8)
        first = static_cast<int>(scalar::sqrtOf(static_cast<float>(needed)) + 0.999f);
    const int second = (needed + first - 1) / first;
    state->samples = {first, second};
    const float step = length / static_cast<float>(first * second);
    const float wide = step * static_cast<float>(first);
    state->stepX = {step * turn.cosine, wide * turn.cosine};
    state->stepY = {step * turn.sine, wide * turn.sine};
    const int side = held(setup.parameters[2].i[0], 0, 2);
    if (side == 0)
        state->first = {-0.5f * static_cast<float>(first - 1), -0.5f * static_cast<float>(second - 1)};
    else if (side == 1)
        state->first = {0.5f, 0.0f};
    else
        state->first = {-0.5f - static_cast<float>(first - 1), -static_cast<float>(second - 1)};
    return state;
}

static std::vector<ScratchShape> directionalBlurScratch(const State*, const Setup& setup)
{
    return {{setup.width, setup.height, setup.channels}};
}

const NodeDeclaration directionalblurNode{
    "directionalblur",
    "Directional Blur",
    "Neighbourhood",
    "The mean along a line through each pixel or on one side of it. Wraps around.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to blur."}},
    {{"length",
      ParameterType::Float,
      {50.0},
      0,
      500,
      "The line's length in thousandths of the picture's width."},
     {"angle", ParameterType::Float, {0.0}, 0, 1, "The line's direction, clockwise from the right in turns."},
     {"side",
      ParameterType::Choice,
      {0},
      0,
      2,
      "Where the line lies: on both sides of a pixel, ahead of it or behind it.",
      {"both", "ahead", "behind"}}},
    prepareDirectionalBlur,
    nullptr,
    rundirectionalBlurArea,
    directionalBlurScratch};

} // namespace vellor::nodes
#endif
