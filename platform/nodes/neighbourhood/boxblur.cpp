#include "platform/nodes/box.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"

namespace vellor::nodes {
namespace {

struct BoxBlurState : State
{
    BoxPlan plan;
};

std::unique_ptr<State> prepareBoxBlur(const Setup& setup)
{
    auto state = std::make_unique<BoxBlurState>();
    const float pixels =
        held(setup.parameters[0].f[0], 0.0f, 500.0f) * 0.001f * static_cast<float>(setup.width);
    state->plan = planBox(pixels, pixels, setup.width);
    return state;
}

std::vector<ScratchShape> boxBlurScratch(const State* state, const Setup& setup)
{
    return boxScratch(static_cast<const BoxBlurState*>(state)->plan, setup.width, setup.height,
                      setup.channels);
}

void boxBlurArea(const AreaJob& job)
{
    const ImageView tiles = job.pass > 0 ? job.scratch[0] : ImageView();
    runBox(static_cast<const BoxBlurState&>(*job.state).plan, job.pass, job.operands[0], tiles, job.result,
           job.y0, job.y1);
}

} // namespace

const NodeDeclaration boxblurNode{
    "boxblur",
    "Box Blur",
    "Neighbourhood",
    "The mean over a square around each pixel, whose edges may lie within pixels. Wraps around.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to blur."}},
    {{"radius",
      ParameterType::Float,
      {10.0},
      0,
      250,
      "How far the square reaches beyond the pixel in its middle, in thousandths of the picture's width."}},
    prepareBoxBlur,
    nullptr,
    boxBlurArea,
    boxBlurScratch};

} // namespace vellor::nodes
