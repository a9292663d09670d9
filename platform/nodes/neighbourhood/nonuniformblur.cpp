#include "platform/nodes/gaussian.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/neighbourhood/directedgaussian.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rowbuffer.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

#include <algorithm>
#include <array>

// Blends, for each pixel, the two of eight blurs that lie around the width that is wanted there: the picture
// itself and Gaussians whose widths grow by a factor of 1.6. The shares are such that the variance is the
// wanted one. All blurs are kept reduced as far as they allow, and are brought back to full size a few rows
// at a time, so that memory stays far below eight pictures.
//
// An oval blur is the round one of its lesser width, then a Gaussian along its longer axis.

namespace vellor::nodes {
namespace {

constexpr int kLevels = 7; // besides the picture itself
constexpr float kGrowth = 1.6f;
constexpr int kRowsAtOnce = 16;

struct NonUniformState : State
{
    std::array<GaussianPlan, kLevels> plans;
    std::array<float, kLevels + 1> variances{}; // relative to the greatest; 0 for the picture
    std::array<int, kLevels> firstPass{};       // of each level; its last pass runs with the blend
    int blendPass = 0;
    bool oval = false;
    DirectedGaussian longer; // of oval blurs
};

std::unique_ptr<State> prepareNonUniform(const Setup& setup)
{
    auto state = std::make_unique<NonUniformState>();
    const float sigma =
        held(setup.parameters[0].f[0], 0.0f, 500.0f) * 0.001f * static_cast<float>(setup.width);
    const float ratio = held(setup.parameters[1].f[0], 1.0f, 16.0f);
    const float greatest = sigma / ratio; // across
    state->oval = ratio > 1.0f;
    if (state->oval)
        state->longer = planDirectedGaussian(scalar::sqrtOf((sigma - greatest) * (sigma + greatest)),
                                             greatest, held(setup.parameters[2].f[0], -1e4f, 1e4f));
    float share = 1.0f;
    for (int level = kLevels; level > 0; --level, share /= kGrowth) {
        const float width = greatest * share;
        state->plans[level - 1] = planGaussian(width, width, setup.width, setup.height);
        state->variances[level] = share * share;
    }
    for (int level = 0; level < kLevels; ++level) {
        state->firstPass[level] = state->blendPass;
        state->blendPass += state->plans[level].passes() - 1;
    }
    return state;
}

std::vector<ScratchShape> nonUniformScratch(const State* state, const Setup& setup)
{
    const auto& blur = *static_cast<const NonUniformState*>(state);
    std::vector<ScratchShape> shapes;
    for (const GaussianPlan& plan : blur.plans)
        for (const ScratchShape& shape : gaussianScratch(plan, setup.width, setup.height, setup.channels))
            shapes.push_back(shape);
    if (blur.oval)
        shapes.push_back({setup.width, setup.height, setup.channels});
    return shapes;
}

/// Some rows of one blur, or of the picture, on top of what lies around the wanted width.
void blendRow(const NonUniformState& state, int level, const float* map, const float* blurred, int width,
              float* result)
{
    const float low = state.variances[std::max(level - 1, 0)], high = state.variances[level];
    const float span = high > low ? 1.0f / (high - low) : 0.0f;
    for (int x = 0; x < width; ++x) {
        const float inside = std::min(std::max(map[x], 0.0f), 1.0f);
        const float share = std::min(std::max((inside * inside - low) * span, 0.0f), 1.0f);
        result[x] += (blurred[x] - result[x]) * share;
    }
}

void blendBand(const NonUniformState& state, const AreaJob& job, int y0, int y1)
{
    const int width = job.result.width;
    MutableImage blurred = job.result;
    blurred.stride = (width + 15) / 16 * 16 + 16;
    RowBuffer rows(static_cast<std::size_t>(blurred.stride) * (y1 - y0) * blurred.channels);
    for (int c = 0; c < job.result.channels; ++c) {
        // The buffer's first row is row y0 of the picture.
        blurred.planes[c] = rows.data() + (c * (y1 - y0) - y0) * blurred.stride;
        for (int y = y0; y < y1; ++y)
            std::copy_n(rowOf(job.operands[0], c, y), width, rowOf(job.result, c, y));
    }
    for (int level = 0; level < kLevels && !job.stopped(); ++level) {
        const GaussianPlan& plan = state.plans[level];
        const int last = plan.passes() - 1;
        const ImageView& source =
            last == 0 ? job.operands[0] : job.scratch[state.firstPass[level] + last - 1];
        runGaussian(plan, last, source, blurred, y0, y1);
        for (int c = 0; c < job.result.channels; ++c)
            for (int y = y0; y < y1; ++y)
                blendRow(state, level + 1, rowOf(job.operands[1], 0, y), rowOf(blurred, c, y), width,
                         rowOf(job.result, c, y));
    }
}

void nonUniformArea(const AreaJob& job)
{
    const auto& state = static_cast<const NonUniformState&>(*job.state);
    if (job.pass > state.blendPass)
        return runDirectedGaussian(state.longer, job.scratch[state.blendPass], job.operands[1],
                                   job.operands[2], job);
    if (job.pass == state.blendPass) {
        for (int y = job.y0; y < job.y1 && !job.stopped(); y += kRowsAtOnce)
            blendBand(state, job, y, std::min(y + kRowsAtOnce, job.y1));
        return;
    }
    int level = kLevels - 1;
    while (state.firstPass[level] > job.pass)
        --level;
    const int pass = job.pass - state.firstPass[level];
    runGaussian(state.plans[level], pass, pass == 0 ? job.operands[0] : job.scratch[job.pass - 1], job.result,
                job.y0, job.y1);
}

} // namespace

const NodeDeclaration nonuniformblurNode{
    "nonuniformblur",
    "Non-uniform Blur",
    "Neighbourhood",
    "A Gaussian blur whose width a map drives from place to place, blended from eight Gaussians so that the "
    "variance is the wanted one. Wraps around.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to blur."},
     {"map", OperandChannels::Grey, true, "The width of the blur: none at 0, all of sigma at 1."},
     {"direction", OperandChannels::Grey, false, "Added to the angle: white is one turn."}},
    {{"sigma",
      ParameterType::Float,
      {20.0},
      0,
      250,
      "Standard deviation of the Gaussian where the map is white, in thousandths of the picture's width."},
     {"ratio",
      ParameterType::Float,
      {1.0},
      1,
      16,
      "How many times narrower the blur is across its direction."},
     {"angle",
      ParameterType::Float,
      {0.0},
      0,
      1,
      "The direction along which the blur has all its width, clockwise from the right in turns."}},
    prepareNonUniform,
    nullptr,
    nonUniformArea,
    nonUniformScratch};

} // namespace vellor::nodes
