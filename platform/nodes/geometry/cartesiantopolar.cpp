#include "platform/nodes/dispatch.h"
#include "platform/nodes/geometry/polar.h"
#include "platform/nodes/kinds.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/geometry/cartesiantopolar.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/resampling-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void cartesianToPolarArea(const AreaJob& job)
{
    const auto& state = static_cast<const PolarState&>(*job.state);
    displace(
        job, job.operands[0], state.reading, [](const Tile&) {},
        [&](const Tile& tile, int i, int row) {
            const SinCos turn = sinCosOfTurns(centresFrom(tile.x + i, job.result.width) + F(state.turn));
            const F radius(centreOf(tile.y + row, job.result.height) * state.radius);
            return Spot{(turn.cosine * radius + F(state.x)) - countFrom(static_cast<float>(tile.x + i)),
                        (turn.sine * radius + F(state.y)) - F(static_cast<float>(tile.y + row))};
        });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(cartesianToPolarArea)

const NodeDeclaration cartesiantopolarNode{
    "cartesiantopolar",
    "Cartesian to Polar",
    "Geometry",
    "Unrolls the rings around a centre: the angle runs right, the radius down.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to unroll."}},
    polarParameters(),
    preparePolar,
    nullptr,
    runcartesianToPolarArea};

} // namespace vellor::nodes
#endif
