#include "platform/nodes/neighbourhood/detail.h"

#include "platform/nodes/parameters.h"

namespace vellor::nodes {

std::unique_ptr<State> prepareDetail(const Setup& setup)
{
    auto state = std::make_unique<DetailState>();
    const float pixels =
        held(setup.parameters[0].f[0], 0.0f, 1000.0f) * 0.001f * static_cast<float>(setup.width);
    state->plan = planGaussian(pixels, pixels, setup.width, setup.height);
    state->factor = held(setup.parameters[1].f[0], -1000.0f, 1000.0f);
    return state;
}

std::vector<ScratchShape> detailScratch(const State* state, const Setup& setup)
{
    const int channels = setup.operands[0].channels;
    std::vector<ScratchShape> shapes =
        gaussianScratch(static_cast<const DetailState*>(state)->plan, setup.width, setup.height, channels);
    shapes.push_back({setup.width, setup.height, channels});
    return shapes;
}

bool detailPass(const AreaJob& job)
{
    const GaussianPlan& plan = static_cast<const DetailState&>(*job.state).plan;
    if (job.pass >= plan.passes())
        return false;
    const ImageView& source = job.pass == 0 ? job.operands[0] : job.scratch[job.pass - 1];
    runGaussian(plan, job.pass, source, job.result, job.y0, job.y1);
    return true;
}

} // namespace vellor::nodes
