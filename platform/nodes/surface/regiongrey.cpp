#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/scalar.h"

#ifndef VELLOR_REGIONGREY_STATE
#define VELLOR_REGIONGREY_STATE
namespace vellor::nodes {
namespace {

struct RegionGreyState : State
{
    float low = 0.0f, high = 1.0f, background = 0.0f;
    std::uint32_t seed = 0;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/surface/regiongrey.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/surface/regions-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void regionGreyRow(const RowJob& job)
{
    const auto& state = static_cast<const RegionGreyState&>(*job.state);
    for (int i = 0; i < job.count; i += kLanes) {
        const RegionPixels at = regionsAt(job.operands, i);
        const F grey = lerpOf(F(state.low), F(state.high), randomOf(at, state.seed, 0));
        store(choose(at.inside, grey, F(state.background)), job.result[0] + i);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(regionGreyRow)

static std::unique_ptr<State> prepareRegionGrey(const Setup& setup)
{
    auto state = std::make_unique<RegionGreyState>();
    state->low = setup.parameters[0].f[0];
    state->high = setup.parameters[1].f[0];
    state->background = setup.parameters[2].f[0];
    state->seed = scalar::mixBits(static_cast<std::uint32_t>(setup.seed) + 0x6b43a9b5u);
    return state;
}

const NodeDeclaration regiongreyNode{
    "regiongrey",
    "Region Grey",
    "Surface",
    "Gives each region that floodfill found a random grey.",
    ResultChannels::Grey,
    Chance::Seeded,
    {{"regions", OperandChannels::Colour, true, "The regions, from floodfill."}},
    {{"low", ParameterType::Float, {0.0}, 0, 1, "The darkest grey."},
     {"high", ParameterType::Float, {1.0}, 0, 1, "The lightest grey."},
     {"background", ParameterType::Float, {0.0}, 0, 1, "The grey outside of regions."}},
    prepareRegionGrey,
    runregionGreyRow};

} // namespace vellor::nodes
#endif
