#include "platform/nodes/gaussian.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"

#include <algorithm>

// The guided filter with the picture as its own guide, and Gaussian windows: where a window's variance is
// small against the square of the contrast, its mean is taken, where it is large, the picture itself. All
// channels of a colour share one weight, from the sum of their variances, so that edges stay free of fringes.
//
// Passes: squares; means of the picture; means of the squares; weights; complements; both of them blurred;
// the result.

namespace vellor::nodes {
namespace {

struct SmoothState : State
{
    GaussianPlan plan;
    float tolerance = 0.01f; // of the variance
    int passes() const { return plan.passes(); }
    // Scratch images, in order of the passes.
    int squares() const { return 0; }
    int mean() const { return passes(); }
    int meanSquares() const { return 2 * passes(); }
    int weights() const { return 2 * passes() + 1; }
    int rests() const { return 2 * passes() + 2; }
    int meanWeights() const { return 3 * passes() + 2; }
    int meanRests() const { return 4 * passes() + 2; }
};

std::unique_ptr<State> prepareSmooth(const Setup& setup)
{
    auto state = std::make_unique<SmoothState>();
    const float pixels =
        held(setup.parameters[0].f[0], 0.0f, 1000.0f) * 0.001f * static_cast<float>(setup.width);
    state->plan = planGaussian(pixels, pixels, setup.width, setup.height);
    const float contrast = held(setup.parameters[1].f[0], 0.0001f, 1000.0f);
    state->tolerance = contrast * contrast;
    return state;
}

std::vector<ScratchShape> smoothScratch(const State* state, const Setup& setup)
{
    const auto& smooth = *static_cast<const SmoothState*>(state);
    std::vector<ScratchShape> shapes;
    const auto full = [&](int channels) { shapes.push_back({setup.width, setup.height, channels}); };
    const auto blur = [&](int channels) {
        for (const ScratchShape& shape : gaussianScratch(smooth.plan, setup.width, setup.height, channels))
            shapes.push_back(shape);
        full(channels);
    };
    full(1);
    blur(setup.channels);
    blur(1);
    full(1);
    full(setup.channels);
    blur(1);
    blur(setup.channels);
    return shapes;
}

/// The mean of the squares of the colour channels of a row.
void squareRow(const ImageView& picture, int y, float* result)
{
    const int channels = std::min(picture.channels, 3);
    std::fill_n(result, picture.width, 0.0f);
    for (int c = 0; c < channels; ++c) {
        const float* row = rowOf(picture, c, y);
        for (int x = 0; x < picture.width; ++x)
            result[x] += row[x] * row[x] / static_cast<float>(channels);
    }
}

void weightRow(const SmoothState& state, const AreaJob& job, int y, float* result)
{
    const float* squares = rowOf(job.scratch[state.meanSquares()], 0, y);
    squareRow(job.scratch[state.mean()], y, result);
    for (int x = 0; x < job.result.width; ++x) {
        const float variance = std::max(squares[x] - result[x], 0.0f);
        result[x] = variance / (variance + state.tolerance);
    }
}

void finishRow(const SmoothState& state, const AreaJob& job, int channel, int y)
{
    const float* in = rowOf(job.operands[0], channel, y);
    const float* weight = rowOf(job.scratch[state.meanWeights()], 0, y);
    const float* rest = rowOf(job.scratch[state.meanRests()], channel, y);
    float* result = rowOf(job.result, channel, y);
    for (int x = 0; x < job.result.width; ++x)
        result[x] = in[x] * weight[x] + rest[x];
}

void restRow(const SmoothState& state, const AreaJob& job, int channel, int y)
{
    const float* weight = rowOf(job.scratch[state.weights()], 0, y);
    const float* mean = rowOf(job.scratch[state.mean()], channel, y);
    float* result = rowOf(job.result, channel, y);
    for (int x = 0; x < job.result.width; ++x)
        result[x] = (1.0f - weight[x]) * mean[x];
}

void smoothArea(const AreaJob& job)
{
    const auto& state = static_cast<const SmoothState&>(*job.state);
    // Pass p of the blur of `source` whose last pass writes scratch image `last`.
    const auto blur = [&](const ImageView& source, int last) {
        const int pass = job.pass - (last - state.passes() + 1);
        runGaussian(state.plan, pass, pass == 0 ? source : job.scratch[job.pass - 1], job.result, job.y0,
                    job.y1);
    };
    if (job.pass > state.squares() && job.pass <= state.mean())
        return blur(job.operands[0], state.mean());
    if (job.pass > state.mean() && job.pass <= state.meanSquares())
        return blur(job.scratch[state.squares()], state.meanSquares());
    if (job.pass > state.rests() && job.pass <= state.meanWeights())
        return blur(job.scratch[state.weights()], state.meanWeights());
    if (job.pass > state.meanWeights() && job.pass <= state.meanRests())
        return blur(job.scratch[state.rests()], state.meanRests());
    for (int y = job.y0; y < job.y1; ++y) {
        if (job.pass == state.squares())
            squareRow(job.operands[0], y, rowOf(job.result, 0, y));
        else if (job.pass == state.weights())
            weightRow(state, job, y, rowOf(job.result, 0, y));
        for (int c = 0; c < job.result.channels; ++c) {
            if (job.pass == state.rests())
                restRow(state, job, c, y);
            else if (job.pass > state.meanRests())
                finishRow(state, job, c, y);
        }
    }
}

} // namespace

const NodeDeclaration smoothNode{
    "smooth",
    "Smooth",
    "Neighbourhood",
    "Smooths what is weak and keeps edges: the guided filter of K. He, J. Sun and X. Tang (2010) with "
    "Gaussian "
    "windows, the picture guiding itself. Wraps around.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to smooth."}},
    {{"radius",
      ParameterType::Float,
      {8.0},
      0,
      100,
      "Standard deviation of the windows in thousandths of the picture's width."},
     {"contrast",
      ParameterType::Float,
      {0.1},
      0.001,
      1,
      "Standard deviation within a window at which a place is half smoothed: what is weaker goes."}},
    prepareSmooth,
    nullptr,
    smoothArea,
    smoothScratch};

} // namespace vellor::nodes
