#include "platform/nodes/gaussian.h"
#include "platform/nodes/kinds.h"

namespace vellor::nodes {
namespace {

struct BlurState : State
{
    GaussianPlan plan;
};

std::unique_ptr<State> prepareBlur(const Setup& setup)
{
    auto state = std::make_unique<BlurState>();
    const float pixels = setup.parameters[0].f[0] * 0.001f * static_cast<float>(setup.width);
    state->plan = planGaussian(pixels, pixels, setup.width, setup.height);
    return state;
}

std::vector<ScratchShape> blurScratch(const State* state, const Setup& setup)
{
    return gaussianScratch(static_cast<const BlurState*>(state)->plan, setup.width, setup.height,
                           setup.channels);
}

void blurArea(const AreaJob& job)
{
    const ImageView& source = job.pass == 0 ? job.operands[0] : job.scratch[job.pass - 1];
    runGaussian(static_cast<const BlurState&>(*job.state).plan, job.pass, source, job.result, job.y0, job.y1);
}

} // namespace

const NodeDeclaration gaussianblurNode{
    "gaussianblur",
    "Gaussian Blur",
    "Neighbourhood",
    "Blurs with a Gaussian, true to 2e-4 of full scale for every width. Wraps around.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to blur."}},
    {{"sigma",
      ParameterType::Float,
      {10.0},
      0,
      250,
      "Standard deviation of the Gaussian in thousandths of the picture's width."}},
    prepareBlur,
    nullptr,
    blurArea,
    blurScratch};

} // namespace vellor::nodes
