#include "platform/nodes/dispatch.h"
#include "platform/nodes/geometry/polar.h"
#include "platform/nodes/kinds.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/geometry/polartocartesian.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/resampling-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void polarToCartesianArea(const AreaJob& job)
{
    const auto& state = static_cast<const PolarState&>(*job.state);
    const float width = static_cast<float>(job.result.width), height = static_cast<float>(job.result.height);
    displace(
        job, job.operands[0], state.reading, [](const Tile&) {},
        [&](const Tile& tile, int i, int row) {
            const F x = countFrom(static_cast<float>(tile.x + i));
            const F y(static_cast<float>(tile.y + row));
            const F dx = x - F(state.x), dy = y - F(state.y);
            const F turn = atan2Of(dy, dx) * F(0.5f / kPi) - F(state.turn);
            const F across = (turn - floorOf(turn)) * F(width) - F(0.5f);
            const F down = sqrtOf(dx * dx + dy * dy) * F(height / state.radius) - F(0.5f);
            // The first and the last row go on to the middle and to the corners.
            return Spot{across - x, clampOf(down, F(0.0f), F(height - 1.0f)) - y};
        });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(polarToCartesianArea)

const NodeDeclaration polartocartesianNode{
    "polartocartesian",
    "Polar to Cartesian",
    "Geometry",
    "Rolls a picture up around a centre: what runs right goes around, what runs down goes outwards. The "
    "lowest "
    "row goes on beyond the radius.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to roll up."}},
    polarParameters(),
    preparePolar,
    nullptr,
    runpolarToCartesianArea};

} // namespace vellor::nodes
#endif
