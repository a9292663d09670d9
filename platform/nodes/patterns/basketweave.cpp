#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/patterns/blocks.h"
#include "platform/nodes/scalar.h"

#ifndef VELLOR_BASKETWEAVE_STATE
#define VELLOR_BASKETWEAVE_STATE
namespace vellor::nodes {
namespace {

// Lengths are shares of a plank's width, measured in the squares' shorter side.
struct BasketWeaveState : BlockState
{
    float across = 4.0f, down = 4.0f; // squares
    float planks = 3.0f;
    float squareX = 3.0f, squareY = 3.0f;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/patterns/basketweave.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/patterns/blocks-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

HWY_INLINE Blocks planksAt(const BasketWeaveState& state, F u, float v)
{
    const F x = u * F(state.across), y(v * state.down);
    const F column = floorOf(x), row = floorOf(y);
    const F fx = x - column, fy = y - row;
    const M upright = aroundOf(column + row, 2.0f) > F(0.5f);
    const F side = choose(upright, fx, fy) * F(state.planks);
    const F plank = minOf(floorOf(side), F(state.planks - 1.0f));
    const float thinX = state.squareX / state.planks, thinY = state.squareY / state.planks;
    const F length = choose(upright, F(state.squareY), F(state.squareX));
    const F width = choose(upright, F(thinX), F(thinY));
    Blocks result;
    result.u = choose(upright, fy, fx);
    result.v = side - plank;
    const U square = hashLattice(toInteger(aroundOf(column, state.across)),
                                 toInteger(aroundOf(row, state.down)), U(state.seed));
    result.hash = mixBits(square + toInteger(plank) * U(0x9e3779b1u));
    result.inside =
        insideBox((result.u - F(0.5f)) * length, (result.v - F(0.5f)) * width,
                  (length - F(state.mortar)) * F(0.5f), (width - F(state.mortar)) * F(0.5f), state.rounding);
    result.direction = choose(upright, F(1.0f), F(0.0f));
    return result;
}

void basketWeaveRow(const RowJob& job)
{
    const auto& state = static_cast<const BasketWeaveState&>(*job.state);
    blockRow(job, state, [&](F x, float y) { return planksAt(state, x, y); });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(basketWeaveRow)

static std::unique_ptr<State> prepareBasketWeave(const Setup& setup)
{
    auto state = std::make_unique<BasketWeaveState>();
    const ParameterValue* p = setup.parameters;
    state->read(p + 2, setup);
    const CellCount count = cellCount(p[0], setup, 2048);
    state->across = static_cast<float>((count.across + 1) / 2 * 2);
    state->down = static_cast<float>((count.down + 1) / 2 * 2);
    state->planks = static_cast<float>(held(p[1].i[0], 1, 64));
    const float width = static_cast<float>(setup.width) / state->across;
    const float height = static_cast<float>(setup.height) / state->down;
    const float plank = std::min(width, height) / state->planks;
    state->squareX = width / plank;
    state->squareY = height / plank;
    state->pixel = 1.0f / plank;
    return state;
}

const NodeDeclaration basketweaveNode{
    "basketweave",
    "Basket Weave",
    "Patterns",
    "Squares of planks side by side, every other square turned, for parquet and paving. Lengths are shares "
    "of a "
    "plank's width; u runs along each plank. The same parameters with another output give the matching masks "
    "and "
    "random values.",
    ResultChannels::Grey,
    Chance::Seeded,
    {},
    blockParameters(
        {{"tiles",
          ParameterType::Int2,
          {4, 0},
          2,
          64,
          "Squares across and down, taken up to even numbers; 0 down keeps them square."},
         {"planks", ParameterType::Int, {3}, 1, 16, "How many planks lie side by side in a square."}},
        true),
    prepareBasketWeave,
    runbasketWeaveRow};

} // namespace vellor::nodes
#endif
