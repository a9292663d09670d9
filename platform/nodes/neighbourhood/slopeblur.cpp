#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"

// Each pixel walks down the slopes of a height map in small steps and gathers what it meets in the picture.
// The first pass works out the slopes, weighted 3, 10, 3 (H. Scharr), as shares of the picture that one step
// goes.

#ifndef VELLOR_SLOPEBLUR_STATE
#define VELLOR_SLOPEBLUR_STATE
namespace vellor::nodes {
namespace {

enum class SlopeBlurMode
{
    Blur,
    Min,
    Max
};

struct SlopeBlurState : State
{
    SlopeBlurMode mode = SlopeBlurMode::Blur;
    int samples = 8;
    float stepX = 0.0f, stepY = 0.0f; // from a difference over two pixels, times 32, to one step
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/neighbourhood/slopeblur.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/sampling-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void slopeChunk(const SlopeBlurState& state, const AreaJob& job, int x, int y, int count)
{
    RowWindow<1> rows[3];
    for (int r = 0; r < 3; ++r)
        rows[r].fill(job.operands[1], 0, x, y + r - 1, count);
    const auto at = [&](int row, int i) { return loadAt(rows[row].at(i)); };
    for (int i = 0; i < count; i += kLanes) {
        const F across = ((at(0, i + 1) - at(0, i - 1)) + (at(2, i + 1) - at(2, i - 1))) * F(3.0f) +
                         (at(1, i + 1) - at(1, i - 1)) * F(10.0f);
        const F down = ((at(2, i - 1) - at(0, i - 1)) + (at(2, i + 1) - at(0, i + 1))) * F(3.0f) +
                       (at(2, i) - at(0, i)) * F(10.0f);
        store(across * F(state.stepX), rowOf(job.result, 0, y) + x + i);
        store(down * F(state.stepY), rowOf(job.result, 1, y) + x + i);
    }
}

HWY_INLINE F gathered(SlopeBlurMode mode, F sofar, F met)
{
    return mode == SlopeBlurMode::Blur  ? sofar + met
           : mode == SlopeBlurMode::Min ? minOf(sofar, met)
                                        : maxOf(sofar, met);
}

void walkChunk(const SlopeBlurState& state, const AreaJob& job, int x, int y, int count)
{
    const ImageView &source = job.operands[0], &slopes = job.scratch[0];
    const int channels = job.result.channels;
    for (int i = 0; i < count; i += kLanes) {
        F u = centresFrom(x + i, job.result.width), v(centreOf(y, job.result.height));
        F sums[kMaxChannels];
        for (int c = 0; c < channels; ++c)
            sums[c] = load(rowOf(source, c, y) + x + i);
        F stepX = load(rowOf(slopes, 0, y) + x + i), stepY = load(rowOf(slopes, 1, y) + x + i);
        for (int s = 1; s < state.samples; ++s) {
            u = u + stepX;
            v = v + stepY;
            const BilinearTaps place(source, u, v);
            for (int c = 0; c < channels; ++c)
                sums[c] = gathered(state.mode, sums[c], place.read(source.planes[c]));
            stepX = place.read(slopes.planes[0]);
            stepY = place.read(slopes.planes[1]);
        }
        const F share(state.mode == SlopeBlurMode::Blur ? 1.0f / static_cast<float>(state.samples) : 1.0f);
        for (int c = 0; c < channels; ++c)
            store(sums[c] * share, rowOf(job.result, c, y) + x + i);
    }
}

void slopeBlurArea(const AreaJob& job)
{
    const auto& state = static_cast<const SlopeBlurState&>(*job.state);
    for (int y = job.y0; y < job.y1; ++y) {
        for (int x = 0; x < job.result.width && !job.stopped(); x += kChunk) {
            const int count = std::min(kChunk, job.result.width - x);
            if (job.pass == 0)
                slopeChunk(state, job, x, y, count);
            else
                walkChunk(state, job, x, y, count);
        }
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(slopeBlurArea)

static std::unique_ptr<State> prepareSlopeBlur(const Setup& setup)
{
    auto state = std::make_unique<SlopeBlurState>();
    const ParameterValue* p = setup.parameters;
    state->samples = held(p[1].i[0], 1, 256);
    state->mode = static_cast<SlopeBlurMode>(held(p[2].i[0], 0, 2));
    // A slope of 1 rises from black to white over the picture's width. Downhill is against it.
    const float amount = held(p[0].f[0], -1000.0f, 1000.0f) * 0.01f / static_cast<float>(state->samples);
    const auto width = static_cast<float>(setup.width), height = static_cast<float>(setup.height);
    state->stepX = -amount * width / 32.0f;
    state->stepY = state->stepX * width / height;
    return state;
}

static std::vector<ScratchShape> slopeBlurScratch(const State*, const Setup& setup)
{
    return {{setup.width, setup.height, 2}};
}

const NodeDeclaration slopeblurNode{
    "slopeblur",
    "Slope Blur",
    "Neighbourhood",
    "Smears a picture along the slopes of a height map, or lets its darkest or lightest parts eat in along "
    "them: wear, chipped edges, flow. Each pixel walks downhill step by step. Wraps around.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to smear."},
     {"slope", OperandChannels::Grey, true, "The height map whose slopes lead."}},
    {{"intensity",
      ParameterType::Float,
      {1.0},
      -20,
      20,
      "How far the walk goes, in hundredths of the picture's width where the slope rises from black to white "
      "over a whole width; negative: uphill."},
     {"samples", ParameterType::Int, {16}, 1, 64, "How many places are read."},
     {"mode",
      ParameterType::Choice,
      {0},
      0,
      2,
      "What is made of the places: their mean, the least or the greatest value.",
      {"blur", "min", "max"}}},
    prepareSlopeBlur,
    nullptr,
    runslopeBlurArea,
    slopeBlurScratch};

} // namespace vellor::nodes
#endif
