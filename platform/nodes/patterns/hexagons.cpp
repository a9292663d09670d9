#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/patterns/blocks.h"
#include "platform/nodes/scalar.h"

#ifndef VELLOR_HEXAGONS_STATE
#define VELLOR_HEXAGONS_STATE
namespace vellor::nodes {
namespace {

// Lengths are shares of a hexagon's width from side to side. Seen with a tip up: rows lie sqrt(3) / 2 apart,
// every other one shifted by a half.
struct HexagonState : BlockState
{
    float columns = 8.0f, rows = 10.0f;
    bool turned = false; // by a quarter: a side is up
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/patterns/hexagons.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/patterns/blocks-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

constexpr float kRow = 0.86602540378f; // sqrt(3) / 2

/// Distance from the edge of a hexagon with a tip up, `half` from the middle to a side, positive inside.
HWY_INLINE F insideHexagon(F x, F y, float half, float rounding)
{
    // Mirrored until the side on the right is the nearest.
    const F ax = absOf(x), ay = absOf(y);
    const F along = ax * F(kRow) + ay * F(0.5f);
    const M mirrored = ax * F(0.5f) + ay * F(kRow) > ax;
    const F px = choose(mirrored, along * F(2.0f * kRow) - ax, ax);
    const F py = choose(mirrored, along - ay, ay);
    const float radius = std::max(std::min(rounding, half), 0.0f);
    const float side = half - radius;
    const F away = px - F(side), beyond = maxOf(absOf(py) - F(side * 0.57735026919f), F(0.0f));
    const F outside = maxOf(away, F(0.0f));
    return F(radius) - choose(away > F(0.0f), sqrtOf(outside * outside + beyond * beyond), away);
}

HWY_INLINE Blocks hexagonsAt(const HexagonState& state, F u, F v)
{
    const F across = (state.turned ? v : u) * F(state.columns);
    const F down = (state.turned ? u : v) * F(0.5f * state.rows); // pairs of rows
    // The nearest middle of the even rows, and of the odd ones.
    const F evenColumn = roundOf(across), evenRow = roundOf(down);
    const F oddColumn = floorOf(across), oddRow = floorOf(down);
    const F evenX = across - evenColumn, evenY = (down - evenRow) * F(2.0f * kRow);
    const F oddX = across - oddColumn - F(0.5f), oddY = (down - oddRow - F(0.5f)) * F(2.0f * kRow);
    const M odd = oddX * oddX + oddY * oddY < evenX * evenX + evenY * evenY;
    const F x = choose(odd, oddX, evenX), y = choose(odd, oddY, evenY);
    const F column = aroundOf(choose(odd, oddColumn, evenColumn), state.columns);
    const F row = aroundOf(choose(odd, oddRow + oddRow + F(1.0f), evenRow + evenRow), state.rows);
    Blocks result;
    const F acrossTips = y * F(kRow) + F(0.5f), acrossSides = x + F(0.5f);
    result.u = state.turned ? acrossTips : acrossSides;
    result.v = state.turned ? acrossSides : acrossTips;
    result.hash = hashLattice(toInteger(column), toInteger(row), U(state.seed));
    result.inside = insideHexagon(x, y, 0.5f * (1.0f - state.mortar), state.rounding);
    result.direction = F(0.0f);
    return result;
}

void hexagonRow(const RowJob& job)
{
    const auto& state = static_cast<const HexagonState&>(*job.state);
    blockRow(job, state, [&](F x, float y) { return hexagonsAt(state, x, F(y)); });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(hexagonRow)

static std::unique_ptr<State> prepareHexagons(const Setup& setup)
{
    auto state = std::make_unique<HexagonState>();
    const ParameterValue* p = setup.parameters;
    state->read(p + 2, setup);
    state->turned = p[1].i[0] == 1;
    const float width = static_cast<float>(state->turned ? setup.height : setup.width);
    const float height = static_cast<float>(state->turned ? setup.width : setup.height);
    const int columns = held(p[0].i[0], 1, 2048);
    const double regular = static_cast<double>(columns) * height / width / 0.86602540378;
    const int rows = p[0].i[1] > 0 ? held(p[0].i[1], 1, 4096) : static_cast<int>(std::min(regular, 4096.0));
    state->columns = static_cast<float>(columns);
    state->rows = static_cast<float>((rows + 1) / 2 * 2);
    if (rows == 0)
        state->rows = 2.0f;
    state->pixel = state->columns / width;
    return state;
}

const NodeDeclaration hexagonsNode{
    "hexagons",
    "Hexagons",
    "Patterns",
    "Hexagonal blocks in a bed of mortar. Lengths are shares of a hexagon's width from side to side. The "
    "same "
    "parameters with another output give the matching masks and random values.",
    ResultChannels::Grey,
    Chance::Seeded,
    {},
    blockParameters({{"tiles",
                      ParameterType::Int2,
                      {8, 0},
                      1,
                      128,
                      "How many side by side, and how many rows, taken up to an even number; 0 rows keeps "
                      "them about regular."},
                     {"orientation",
                      ParameterType::Choice,
                      {0},
                      0,
                      1,
                      "Whether a tip or a side points up; with sides up, rows run down the picture.",
                      {"tipup", "sideup"}}}),
    prepareHexagons,
    runhexagonRow};

} // namespace vellor::nodes
#endif
