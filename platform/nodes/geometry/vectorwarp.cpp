#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"

#ifndef VELLOR_VECTORWARP_STATE
#define VELLOR_VECTORWARP_STATE
namespace vellor::nodes {
namespace {

struct VectorWarpState : State
{
    float scaleX = 0.0f, scaleY = 0.0f; // from -0.5 to 0.5 to shares of the picture's width and height
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/geometry/vectorwarp.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/sampling-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void vectorWarpArea(const AreaJob& job)
{
    const auto& state = static_cast<const VectorWarpState&>(*job.state);
    const ImageView& source = job.operands[0];
    const ImageView& field = job.operands[1];
    for (int y = job.y0; y < job.y1; ++y) {
        const F v(centreOf(y, job.result.height));
        for (int x = 0; x < job.result.width; x += kLanes) {
            const F u = centresFrom(x, job.result.width);
            const BilinearTaps own(field, u, v); // the field may have another size
            const F dx = (own.read(field.planes[0]) - F(0.5f)) * F(state.scaleX);
            const F dy = (own.read(field.planes[1]) - F(0.5f)) * F(state.scaleY);
            const BilinearTaps taps(source, u + dx, v + dy);
            for (int c = 0; c < job.result.channels; ++c)
                store(taps.read(source.planes[c]), rowOf(job.result, c, y) + x);
        }
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(vectorWarpArea)

static std::unique_ptr<State> prepareVectorWarp(const Setup& setup)
{
    auto state = std::make_unique<VectorWarpState>();
    state->scaleX = held(setup.parameters[0].f[0], -1000.0f, 1000.0f) * 0.02f;
    state->scaleY = state->scaleX * static_cast<float>(setup.width) / static_cast<float>(setup.height);
    return state;
}

const NodeDeclaration vectorwarpNode{
    "vectorwarp",
    "Vector Warp",
    "Geometry",
    "Takes each pixel from the place that red and green of a colour picture point to. Wraps around.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to warp."},
     {"vectors", OperandChannels::Colour, true, "Red points right and green down; 0.5 stays."}},
    {{"intensity",
      ParameterType::Float,
      {5.0},
      -50,
      50,
      "How far a value of 1 points, in hundredths of the picture's width."}},
    prepareVectorWarp,
    nullptr,
    runvectorWarpArea};

} // namespace vellor::nodes
#endif
