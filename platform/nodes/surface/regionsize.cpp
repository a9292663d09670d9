#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

#ifndef VELLOR_REGIONSIZE_STATE
#define VELLOR_REGIONSIZE_STATE
namespace vellor::nodes {
namespace {

enum class RegionMeasure
{
    Area,
    Width,
    Height,
    Longer,
    Shorter
};

struct RegionSizeState : State
{
    RegionMeasure measure = RegionMeasure::Area;
    float low = 0.0f, inverseSpan = 1.0f; // pixels
    float background = 0.0f;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/surface/regionsize.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/surface/regions-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

HWY_INLINE F measured(RegionMeasure measure, const RegionPixels& at)
{
    switch (measure) {
    case RegionMeasure::Width:
        return at.width;
    case RegionMeasure::Height:
        return at.height;
    case RegionMeasure::Longer:
        return maxOf(at.width, at.height);
    case RegionMeasure::Shorter:
        return minOf(at.width, at.height);
    case RegionMeasure::Area:
        break;
    }
    return sqrtOf(at.width * at.height * at.filled);
}

void regionSizeRow(const RowJob& job)
{
    const auto& state = static_cast<const RegionSizeState&>(*job.state);
    for (int i = 0; i < job.count; i += kLanes) {
        const RegionPixels at = regionsAt(job.operands, i);
        const F size = (measured(state.measure, at) - F(state.low)) * F(state.inverseSpan);
        store(choose(at.inside, clampOf(size, F(0.0f), F(1.0f)), F(state.background)), job.result[0] + i);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(regionSizeRow)

static std::unique_ptr<State> prepareRegionSize(const Setup& setup)
{
    auto state = std::make_unique<RegionSizeState>();
    const ParameterValue* p = setup.parameters;
    const auto pixels = static_cast<float>(setup.width);
    state->measure = static_cast<RegionMeasure>(held(p[0].i[0], 0, 4));
    state->low = held(p[1].f[0], 0.0f, 1e3f) * pixels;
    state->inverseSpan = 1.0f / std::max(held(p[2].f[0], 0.0f, 1e3f) * pixels - state->low, 1e-3f);
    state->background = p[3].f[0];
    return state;
}

const NodeDeclaration regionsizeNode{
    "regionsize",
    "Region Size",
    "Surface",
    "Gives each region that floodfill found a grey that tells its size.",
    ResultChannels::Grey,
    Chance::None,
    {{"regions", OperandChannels::Colour, true, "The regions, from floodfill."}},
    {{"measure",
      ParameterType::Choice,
      {0},
      0,
      4,
      "area is the side of a square as large as the region, within 1 percent for all but thin ones; width, "
      "height, longer and shorter are sides of the box around it.",
      {"area", "width", "height", "longer", "shorter"}},
     {"low",
      ParameterType::Float,
      {0.0},
      0,
      1,
      "The size that gives black, in shares of the picture's width."},
     {"high", ParameterType::Float, {0.25}, 0, 1, "The size that gives white."},
     {"background", ParameterType::Float, {0.0}, 0, 1, "The grey outside of regions."}},
    prepareRegionSize,
    runregionSizeRow};

} // namespace vellor::nodes
#endif
