#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/patterns/blocks.h"
#include "platform/nodes/patterns/bond.h"
#include "platform/nodes/scalar.h"

#ifndef VELLOR_BRICK_STATE
#define VELLOR_BRICK_STATE
namespace vellor::nodes {
namespace {

// Lengths are shares of a brick's height, so that edges are as wide across as down.
struct BrickState : BlockState
{
    float columns = 4.0f, rows = 8.0f;
    float aspect = 2.0f; // a brick's width by its height
    float offset = 0.5f, offsetVariation = 0.0f;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/patterns/brick.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/patterns/blocks-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

HWY_INLINE Blocks bricksAt(const BrickState& state, F x, float y)
{
    const float down = y * state.rows;
    const float row = scalar::floorOf(down);
    const auto rowIndex = static_cast<std::uint32_t>(
        static_cast<std::int32_t>(row - state.rows * scalar::floorOf(row / state.rows)));
    const float random = scalar::unitOf(scalar::hashLattice(rowIndex, 0x51u, state.seed)) - 0.5f;
    const float offset = state.offset * static_cast<float>(rowIndex) + state.offsetVariation * random;
    const F across = x * F(state.columns) + F(offset);
    const F column = floorOf(across);
    const F wrappedColumn = column - F(state.columns) * floorOf(column / F(state.columns));
    Blocks result;
    result.u = across - column;
    result.v = F(down - row);
    result.hash = hashLattice(toInteger(wrappedColumn), U(rowIndex), U(state.seed));
    result.inside =
        insideBox((result.u - F(0.5f)) * F(state.aspect), result.v - F(0.5f),
                  F(0.5f * (state.aspect - state.mortar)), F(0.5f * (1.0f - state.mortar)), state.rounding);
    result.direction = F(0.0f);
    return result;
}

void brickRow(const RowJob& job)
{
    const auto& state = static_cast<const BrickState&>(*job.state);
    blockRow(job, state, [&](F x, float y) { return bricksAt(state, x, y); });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(brickRow)

static std::unique_ptr<State> prepareBrick(const Setup& setup)
{
    auto state = std::make_unique<BrickState>();
    const ParameterValue* p = setup.parameters;
    state->read(p + 3, setup);
    const int rows = held(p[0].i[1], 1, 4096);
    state->columns = static_cast<float>(held(p[0].i[0], 1, 4096));
    state->rows = static_cast<float>(rows);
    state->aspect =
        (static_cast<float>(setup.width) / state->columns) / (static_cast<float>(setup.height) / state->rows);
    state->offset = bondOffset(held(p[1].f[0], -1.0f, 1.0f), rows);
    state->offsetVariation = held(p[2].f[0], 0.0f, 1.0f);
    state->mortar = std::min(state->mortar, state->aspect);
    state->pixel = state->rows / static_cast<float>(setup.height);
    return state;
}

const NodeDeclaration brickNode{
    "brick",
    "Brick",
    "Patterns",
    "Rows of bricks with rounded corners and bevelled edges in a bed of mortar. Lengths are shares of a "
    "brick's height. The same parameters with another output give the matching masks and random values.",
    ResultChannels::Grey,
    Chance::Seeded,
    {},
    blockParameters({{"bricks",
                      ParameterType::Int2,
                      {4, 8},
                      1,
                      64,
                      "How many bricks lie in a row, and how many rows there are."},
                     {"offset",
                      ParameterType::Float,
                      {0.5},
                      0,
                      1,
                      "How far each row is shifted against the one above, in bricks; taken to the nearest "
                      "shift with which the "
                      "bond goes on across the picture's edge."},
                     {"offsetvariation",
                      ParameterType::Float,
                      {0.0},
                      0,
                      1,
                      "How far rows are shifted by chance, in bricks."}}),
    prepareBrick,
    runbrickRow};

} // namespace vellor::nodes
#endif
