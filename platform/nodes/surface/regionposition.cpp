#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"

#ifndef VELLOR_REGIONPOSITION_STATE
#define VELLOR_REGIONPOSITION_STATE
namespace vellor::nodes {
namespace {

struct RegionPositionState : State
{
    bool down = false; // what a grey result tells
    std::array<float, 4> background{};
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/surface/regionposition.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/surface/regions-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

/// The middle of a box of `length` pixels, of which the pixel in hand lies at `share`, as a share of the
/// picture's `size`. Boxes start at whole pixels, which makes this the same for all pixels of a region.
HWY_INLINE F middleOf(F pixel, F share, F length, int size)
{
    const F first = roundOf(pixel - (share * length - F(0.5f)));
    const F start = choose(first < F(0.0f), first + F(static_cast<float>(size)), first);
    const F middle = (start + length * F(0.5f)) * F(1.0f / static_cast<float>(size));
    return middle - floorOf(middle);
}

void regionPositionRow(const RowJob& job)
{
    const auto& state = static_cast<const RegionPositionState&>(*job.state);
    for (int i = 0; i < job.count; i += kLanes) {
        const RegionPixels at = regionsAt(job.operands, i);
        const F x = middleOf(countFrom(static_cast<float>(job.x + i)), at.u, at.width, job.width);
        const F y = middleOf(F(static_cast<float>(job.y)), at.v, at.height, job.height);
        const auto put = [&](int c, F value) {
            store(choose(at.inside, value, F(state.background[c])), job.result[c] + i);
        };
        if (job.channels == 1) {
            put(0, state.down ? y : x);
            continue;
        }
        put(0, x);
        put(1, y);
        put(2, F(0.0f));
        put(3, F(1.0f));
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(regionPositionRow)

static std::unique_ptr<State> prepareRegionPosition(const Setup& setup)
{
    auto state = std::make_unique<RegionPositionState>();
    state->down = setup.parameters[0].i[0] == 1;
    state->background = setup.parameters[1].f;
    return state;
}

const NodeDeclaration regionpositionNode{
    "regionposition",
    "Region Position",
    "Surface",
    "Tells where the middle of the box around each region lies that floodfill found, 0 to 1 from left to "
    "right and from top to bottom. In colour, red is x and green is y.",
    ResultChannels::Chosen,
    Chance::None,
    {{"regions", OperandChannels::Colour, true, "The regions, from floodfill."}},
    {{"axis", ParameterType::Choice, {0}, 0, 1, "What a grey result tells.", {"x", "y"}},
     {"background",
      ParameterType::Float4,
      {0.0, 0.0, 0.0, 1.0},
      0,
      1,
      "The colour outside of regions; a grey result takes the first number."}},
    prepareRegionPosition,
    runregionPositionRow};

} // namespace vellor::nodes
#endif
