#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

#ifndef VELLOR_REGIONGRADIENT_STATE
#define VELLOR_REGIONGRADIENT_STATE
namespace vellor::nodes {
namespace {

struct RegionGradientState : State
{
    float angle = 0.0f, angleVariation = 0.0f; // turns
    float strengthVariation = 0.0f, background = 0.0f;
    std::uint32_t seed = 0;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/surface/regiongradient.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/surface/regions-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void regionGradientRow(const RowJob& job)
{
    const auto& state = static_cast<const RegionGradientState&>(*job.state);
    const F half(0.5f);
    for (int i = 0; i < job.count; i += kLanes) {
        const RegionPixels at = regionsAt(job.operands, i);
        const F stray = (randomOf(at, state.seed, 0) - half) * F(state.angleVariation);
        const SinCos turn = sinCosOfTurns(F(state.angle) + stray);
        const F across = turn.cosine * at.width, down = turn.sine * at.height;
        // From -0.5 to 0.5 between the two corners of the box that lie farthest apart along the direction.
        const F along =
            ((at.u - half) * across + (at.v - half) * down) / maxOf(absOf(across) + absOf(down), F(1e-3f));
        const F strength = F(1.0f) - randomOf(at, state.seed, 1) * F(state.strengthVariation);
        store(choose(at.inside, half + along * strength, F(state.background)), job.result[0] + i);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(regionGradientRow)

static std::unique_ptr<State> prepareRegionGradient(const Setup& setup)
{
    auto state = std::make_unique<RegionGradientState>();
    const ParameterValue* p = setup.parameters;
    state->angle = held(p[0].f[0], -1e4f, 1e4f);
    state->angleVariation = held(p[1].f[0], 0.0f, 1.0f);
    state->strengthVariation = held(p[2].f[0], 0.0f, 1.0f);
    state->background = p[3].f[0];
    state->seed = scalar::mixBits(static_cast<std::uint32_t>(setup.seed) + 0x3c6ef372u);
    return state;
}

const NodeDeclaration regiongradientNode{
    "regiongradient",
    "Region Gradient",
    "Surface",
    "A ramp from black to white over the box around each region that floodfill found.",
    ResultChannels::Grey,
    Chance::Seeded,
    {{"regions", OperandChannels::Colour, true, "The regions, from floodfill."}},
    {{"angle",
      ParameterType::Float,
      {0.0},
      -1,
      1,
      "Where the ramps rise to, in turns clockwise from the right."},
     {"anglevariation",
      ParameterType::Float,
      {0.0},
      0,
      1,
      "How much angles vary from region to region; 1 turns them anywhere."},
     {"strengthvariation",
      ParameterType::Float,
      {0.0},
      0,
      1,
      "How much flatter ramps may be, at random; they stay grey in the middle."},
     {"background", ParameterType::Float, {0.0}, 0, 1, "The grey outside of regions."}},
    prepareRegionGradient,
    runregionGradientRow};

} // namespace vellor::nodes
#endif
