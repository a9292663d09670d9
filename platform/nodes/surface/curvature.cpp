#include "platform/nodes/gaussian.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

#include <algorithm>

namespace vellor::nodes {
namespace {

enum class CurvatureMeasure
{
    Relief,
    Mean
};
enum class CurvatureOutput
{
    Both,
    Convex,
    Concave
};

struct CurvatureState : State
{
    GaussianPlan plan;
    float factor = 1.0f;
    CurvatureMeasure measure = CurvatureMeasure::Relief;
    CurvatureOutput output = CurvatureOutput::Both;
    float depth = 1.0f; // pixels between black and white
};

std::unique_ptr<State> prepareCurvature(const Setup& setup)
{
    auto state = std::make_unique<CurvatureState>();
    const float pixels =
        held(setup.parameters[0].f[0], 0.0f, 500.0f) * 0.001f * static_cast<float>(setup.width);
    state->plan = planGaussian(pixels, pixels, setup.width, setup.height);
    state->output = static_cast<CurvatureOutput>(held(setup.parameters[2].i[0], 0, 2));
    state->measure = static_cast<CurvatureMeasure>(held(setup.parameters[3].i[0], 0, 1));
    const float width = static_cast<float>(setup.width);
    state->depth = held(setup.parameters[4].f[0], -1000.0f, 1000.0f) * 0.01f * width;
    state->factor = setup.parameters[1].f[0];
    // What is curved like a ball of the surroundings' radius counts 1.
    if (state->measure == CurvatureMeasure::Mean)
        state->factor *= pixels;
    return state;
}

std::vector<ScratchShape> curvatureScratch(const State* state, const Setup& setup)
{
    std::vector<ScratchShape> shapes =
        gaussianScratch(static_cast<const CurvatureState*>(state)->plan, setup.width, setup.height, 1);
    shapes.push_back({setup.width, setup.height, 1});
    return shapes;
}

/// Heights beyond all measure must not make infinities.
float bounded(float derivative)
{
    return std::min(std::max(derivative, -1e6f), 1e6f);
}

/// Mean curvature per pixel, positive where the surface bulges upwards: half the sum of the two principal
/// curvatures, of the graph of a function (M. do Carmo, "Differential Geometry of Curves and Surfaces",
/// 1976). First derivatives by Scharr's weights (3, 10, 3)/32, second ones of neighbours.
void meanCurvature(const ImageView& height, float depth, int y, float* result)
{
    const float *up = rowOf(height, 0, y - 1), *here = rowOf(height, 0, y), *down = rowOf(height, 0, y + 1);
    for (int x = 0; x < height.width; ++x) {
        const int l = x > 0 ? x - 1 : height.width - 1, r = x + 1 < height.width ? x + 1 : 0;
        const float across = 10.0f * (here[r] - here[l]) + 3.0f * ((up[r] - up[l]) + (down[r] - down[l]));
        const float along = 10.0f * (down[x] - up[x]) + 3.0f * ((down[l] - up[l]) + (down[r] - up[r]));
        const float hx = bounded(across * depth * (1.0f / 32.0f));
        const float hy = bounded(along * depth * (1.0f / 32.0f));
        const float hxx = bounded((here[l] - 2.0f * here[x] + here[r]) * depth);
        const float hyy = bounded((up[x] - 2.0f * here[x] + down[x]) * depth);
        const float hxy = bounded(0.25f * ((down[r] - down[l]) - (up[r] - up[l])) * depth);
        const float square = 1.0f + hx * hx + hy * hy;
        const float bent = (1.0f + hx * hx) * hyy - 2.0f * (hx * hy) * hxy + (1.0f + hy * hy) * hxx;
        result[x] = -0.5f * bent / (square * scalar::sqrtOf(square));
    }
}

void curvatureArea(const AreaJob& job)
{
    const auto& state = static_cast<const CurvatureState&>(*job.state);
    if (job.pass < state.plan.passes()) {
        const ImageView& source = job.pass == 0 ? job.operands[0] : job.scratch[job.pass - 1];
        return runGaussian(state.plan, job.pass, source, job.result, job.y0, job.y1);
    }
    for (int y = job.y0; y < job.y1; ++y) {
        const ImageView& smooth = job.scratch[job.pass - 1];
        const float *height = rowOf(job.operands[0], 0, y), *mean = rowOf(smooth, 0, y);
        float* result = rowOf(job.result, 0, y);
        if (state.measure == CurvatureMeasure::Mean)
            meanCurvature(smooth, state.depth, y, result);
        else
            for (int x = 0; x < job.result.width; ++x)
                result[x] = height[x] - mean[x];
        const float factor = state.output == CurvatureOutput::Concave ? -state.factor : state.factor;
        if (state.output == CurvatureOutput::Both)
            for (int x = 0; x < job.result.width; ++x)
                result[x] = 0.5f + result[x] * factor;
        else
            for (int x = 0; x < job.result.width; ++x)
                result[x] = std::max(result[x] * factor, 0.0f);
    }
}

} // namespace

const NodeDeclaration curvatureNode{
    "curvature",
    "Curvature",
    "Surface",
    "How much a height map bulges: light on ridges and edges, dark in grooves, 0.5 where it is even.",
    ResultChannels::Grey,
    Chance::None,
    {{"height", OperandChannels::Grey, true, "The height map."}},
    {{"radius",
      ParameterType::Float,
      {5.0},
      0,
      250,
      "Standard deviation of the Gaussian surroundings in thousandths of the picture's width: small finds "
      "edges, large finds forms."},
     {"intensity", ParameterType::Float, {2.0}, -20, 20, "Factor of what is measured."},
     {"output",
      ParameterType::Choice,
      {0},
      0,
      2,
      "Both: convex above and concave below 0.5; convex or concave: only that, on black.",
      {"both", "convex", "concave"}},
     {"measure",
      ParameterType::Choice,
      {0},
      0,
      1,
      "Relief: how far the height stands above or below its surroundings' mean; mean: the mean curvature of "
      "the "
      "surface smoothed so far, half the sum of its principal curvatures, which slopes do not change, times "
      "the radius.",
      {"relief", "mean"}},
     {"depth",
      ParameterType::Float,
      {5.0},
      -100,
      100,
      "For mean: how far white lies above black, in hundredths of the picture's width."}},
    prepareCurvature,
    nullptr,
    curvatureArea,
    curvatureScratch};

} // namespace vellor::nodes
