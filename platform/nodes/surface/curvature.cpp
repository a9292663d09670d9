#include "platform/nodes/gaussian.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"

namespace vellor::nodes {
namespace {

struct CurvatureState : State
{
    GaussianPlan plan;
    float factor = 1.0f;
};

std::unique_ptr<State> prepareCurvature(const Setup& setup)
{
    auto state = std::make_unique<CurvatureState>();
    const float pixels =
        held(setup.parameters[0].f[0], 0.0f, 500.0f) * 0.001f * static_cast<float>(setup.width);
    state->plan = planGaussian(pixels, pixels, setup.width, setup.height);
    state->factor = setup.parameters[1].f[0];
    return state;
}

std::vector<ScratchShape> curvatureScratch(const State* state, const Setup& setup)
{
    std::vector<ScratchShape> shapes =
        gaussianScratch(static_cast<const CurvatureState*>(state)->plan, setup.width, setup.height, 1);
    shapes.push_back({setup.width, setup.height, 1});
    return shapes;
}

void curvatureArea(const AreaJob& job)
{
    const auto& state = static_cast<const CurvatureState&>(*job.state);
    if (job.pass < state.plan.passes()) {
        const ImageView& source = job.pass == 0 ? job.operands[0] : job.scratch[job.pass - 1];
        return runGaussian(state.plan, job.pass, source, job.result, job.y0, job.y1);
    }
    for (int y = job.y0; y < job.y1; ++y) {
        const float *height = rowOf(job.operands[0], 0, y), *mean = rowOf(job.scratch[job.pass - 1], 0, y);
        float* result = rowOf(job.result, 0, y);
        for (int x = 0; x < job.result.width; ++x)
            result[x] = 0.5f + (height[x] - mean[x]) * state.factor;
    }
}

} // namespace

const NodeDeclaration curvatureNode{
    "curvature",
    "Curvature",
    "Surface",
    "How far a height map stands above or below its surroundings' Gaussian mean: light on ridges and edges, "
    "dark in grooves, "
    "0.5 where it is even.",
    ResultChannels::Grey,
    Chance::None,
    {{"height", OperandChannels::Grey, true, "The height map."}},
    {{"radius",
      ParameterType::Float,
      {5.0},
      0,
      250,
      "Standard deviation of the surroundings in thousandths of the picture's width: small finds edges, "
      "large finds forms."},
     {"intensity", ParameterType::Float, {2.0}, -20, 20, "Factor of the difference."}},
    prepareCurvature,
    nullptr,
    curvatureArea,
    curvatureScratch};

} // namespace vellor::nodes
