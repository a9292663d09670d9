#include "platform/nodes/geometry/affine.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"

namespace vellor::nodes {
namespace {

struct OffsetState : State
{
    AffinePlan plan;
};

std::unique_ptr<State> prepareOffset(const Setup& setup)
{
    auto state = std::make_unique<OffsetState>();
    const ParameterValue* p = setup.parameters;
    AffineMap map;
    map.x0 = -double(held(p[0].f[0], -1e4f, 1e4f)) * setup.width;
    map.y0 = -double(held(p[0].f[1], -1e4f, 1e4f)) * setup.height;
    const auto filter = static_cast<PixelFilter>(held(p[1].i[0], 0, 2));
    state->plan = planAffine(map, {filter, Edges::Repeat}, false, setup.width, setup.height);
    return state;
}

void offsetArea(const AreaJob& job)
{
    runAffine(static_cast<const OffsetState&>(*job.state).plan, job);
}

} // namespace

const NodeDeclaration offsetNode{"offset",
                                 "Offset",
                                 "Geometry",
                                 "Moves a picture and lets what leaves at one edge come in at the other. By "
                                 "whole pixels nothing changes but "
                                 "the place.",
                                 ResultChannels::FromOperands,
                                 Chance::None,
                                 {{"input", OperandChannels::Result, true, "The picture to move."}},
                                 {{"offset",
                                   ParameterType::Float2,
                                   {0.5, 0.5},
                                   -1,
                                   1,
                                   "How far it moves right and down, in shares of width and height."},
                                  filterParameter()},
                                 prepareOffset,
                                 nullptr,
                                 offsetArea};

} // namespace vellor::nodes
