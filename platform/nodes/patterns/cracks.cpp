#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

#include <array>

// Cracks run along the borders between the cells of random points, moved by noise so that they wander. Within
// a cell finer cracks branch off: borders of smaller cells, as wide as they are close to the coarser crack
// that they start from. Lengths are shares of a cell's width.

#ifndef VELLOR_CRACKS_STATE
#define VELLOR_CRACKS_STATE
namespace vellor::nodes {
namespace {

enum class CrackOutput
{
    Height,
    Mask,
    Distance,
    Value
};

struct CrackLevel
{
    float across = 6.0f, down = 6.0f; // cells
    float width = 0.02f, size = 1.0f; // of a cell, by one of the first level
    std::uint32_t seed = 0;
};

struct CrackState : State
{
    std::array<CrackLevel, 4> levels;
    int count = 1;
    float width = 0.05f, widthVariation = 0.5f, bevel = 0.05f;
    float warp = 0.3f, branching = 0.5f, reach = 0.3f;
    float pixel = 0.01f;
    CrackOutput output = CrackOutput::Height;
    std::uint32_t seed = 0;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/patterns/cracks.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/patterns/blocks-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

struct Pair
{
    F x, y;
};

/// Two smooth random numbers, -1 to 1, from one lattice.
HWY_INLINE Pair noiseAt(F u, F v, float across, float down, std::uint32_t seed)
{
    const F x = u * F(across), y = v * F(down);
    const F column = floorOf(x), row = floorOf(y);
    const F fx = x - column, fy = y - row;
    const F tx = fx * fx * (F(3.0f) - F(2.0f) * fx), ty = fy * fy * (F(3.0f) - F(2.0f) * fy);
    const U x0 = toInteger(aroundOf(column, across)), x1 = toInteger(aroundOf(column + F(1.0f), across));
    const U y0 = toInteger(aroundOf(row, down)), y1 = toInteger(aroundOf(row + F(1.0f), down));
    // A hash is enough for two numbers of 16 bits.
    const U h00 = hashLattice(x0, y0, U(seed)), h10 = hashLattice(x1, y0, U(seed));
    const U h01 = hashLattice(x0, y1, U(seed)), h11 = hashLattice(x1, y1, U(seed));
    const auto mixed = [&](U a, U b, U c, U d) {
        const F upper = lerpOf(toFloat(a), toFloat(b), tx), lower = lerpOf(toFloat(c), toFloat(d), tx);
        return lerpOf(upper, lower, ty) * F(2.0f / 65535.0f) - F(1.0f);
    };
    const U low(0xffffu);
    return {mixed(h00 & low, h10 & low, h01 & low, h11 & low),
            mixed(h00 >> 16, h10 >> 16, h01 >> 16, h11 >> 16)};
}

/// Where the point of a cell lies, from the corner of cell (0, 0).
HWY_INLINE Pair pointOf(const CrackLevel& level, F column, F row)
{
    const U hash = hashLattice(toInteger(aroundOf(column, level.across)),
                               toInteger(aroundOf(row, level.down)), U(level.seed));
    const F scale(0.8f / 65535.0f);
    return {column + F(0.1f) + toFloat(hash & U(0xffffu)) * scale,
            row + F(0.1f) + toFloat(hash >> 16) * scale};
}

struct Border
{
    F distance; // from the border, in cells of the first level
    U hash;     // of the cell
};

/// The nearest point's cell and the distance from its border: the least of those from the bisectors with the
/// points around it.
HWY_INLINE Border borderAt(const CrackLevel& level, F u, F v)
{
    const F x = u * F(level.across), y = v * F(level.down);
    const F column = floorOf(x), row = floorOf(y);
    F best(1e9f), nearX(0.0f), nearY(0.0f), nearColumn = column, nearRow = row;
    for (int j = -1; j <= 1; ++j) {
        for (int i = -1; i <= 1; ++i) {
            const F c = column + F(static_cast<float>(i)), r = row + F(static_cast<float>(j));
            const Pair point = pointOf(level, c, r);
            const F dx = point.x - x, dy = point.y - y;
            const F square = dx * dx + dy * dy;
            const M nearer = square < best;
            best = choose(nearer, square, best);
            nearX = choose(nearer, dx, nearX);
            nearY = choose(nearer, dy, nearY);
            nearColumn = choose(nearer, c, nearColumn);
            nearRow = choose(nearer, r, nearRow);
        }
    }
    F distance(1e9f);
    for (int j = -1; j <= 1; ++j) {
        for (int i = -1; i <= 1; ++i) {
            if (i == 0 && j == 0)
                continue;
            const Pair point =
                pointOf(level, nearColumn + F(static_cast<float>(i)), nearRow + F(static_cast<float>(j)));
            const F dx = point.x - x, dy = point.y - y;
            const F wayX = dx - nearX, wayY = dy - nearY;
            const F length = sqrtOf(wayX * wayX + wayY * wayY);
            const F middle = (dx + nearX) * wayX + (dy + nearY) * wayY;
            distance = minOf(distance, F(0.5f) * middle / length);
        }
    }
    const U hash = hashLattice(toInteger(aroundOf(nearColumn, level.across)),
                               toInteger(aroundOf(nearRow, level.down)), U(level.seed ^ 0x5bd1e995u));
    return {maxOf(distance, F(0.0f)) * F(level.size), hash};
}

HWY_INLINE F cracksAt(const CrackState& state, F u, F v)
{
    const CrackLevel& first = state.levels[0];
    const Pair wide = noiseAt(u, v, first.across * 2.0f, first.down * 2.0f, state.seed + 1u);
    const Pair fine = noiseAt(u, v, first.across * 6.0f, first.down * 6.0f, state.seed + 2u);
    const Pair finest = noiseAt(u, v, first.across * 15.0f, first.down * 15.0f, state.seed + 3u);
    const F moveX = (wide.x + fine.x * F(0.16f) + finest.x * F(0.04f)) * F(state.warp);
    const F moveY = (wide.y + fine.y * F(0.16f) + finest.y * F(0.04f)) * F(state.warp);
    const F movedU = u + moveX * F(1.0f / first.across), movedV = v + moveY * F(1.0f / first.down);
    // How wide cracks are here: noise along them, which also closes some.
    const Pair along = noiseAt(u, v, first.across * 3.0f, first.down * 3.0f, state.seed + 4u);
    const F wider = maxOf(F(1.0f) + (along.x + finest.y * F(0.5f)) * F(state.widthVariation), F(0.0f));
    F cover(0.0f), worn(0.0f), near(0.0f), value(0.0f), fade(1.0f);
    for (int k = 0; k < state.count; ++k) {
        const CrackLevel& level = state.levels[k];
        const Border border = borderAt(level, movedU, movedV);
        const F half = F(0.5f * level.width) * wider * fade;
        const F open = half + half;
        const F inside =
            clampOf((half - border.distance) * F(1.0f / state.pixel) + F(0.5f), F(0.0f), F(1.0f)) *
            minOf(open * F(1.0f / state.pixel), F(1.0f));
        cover = maxOf(cover, inside);
        const F beside = F(1.0f) - clampOf((border.distance - half) * F(1.0f / (state.bevel * level.size)),
                                           F(0.0f), F(1.0f));
        worn = maxOf(worn, beside * beside * fade * minOf(wider, F(1.0f)));
        if (k == 0) {
            value = unitOf(border.hash);
            near = border.distance;
        }
        // The next finer cracks: in some cells, thinner the farther they get from this level's.
        const F chosen = choose(unitOf(nextHash(border.hash)) < F(state.branching), F(1.0f), F(0.0f));
        const F far = F(state.reach * level.size) * (F(0.5f) + unitOf(nextHash(nextHash(border.hash))));
        fade = fade * chosen * clampOf(F(1.0f) - border.distance / far, F(0.0f), F(1.0f));
    }
    switch (state.output) {
    case CrackOutput::Mask:
        return cover;
    case CrackOutput::Distance:
        return clampOf(near * F(2.0f), F(0.0f), F(1.0f));
    case CrackOutput::Value:
        return value;
    case CrackOutput::Height:
        break;
    }
    return (F(1.0f) - cover) * (F(1.0f) - worn * F(0.3f));
}

void cracksRow(const RowJob& job)
{
    const auto& state = static_cast<const CrackState&>(*job.state);
    const F v(centreOf(job.y, job.height));
    for (int i = 0; i < job.count; i += kLanes)
        store(cracksAt(state, centresFrom(job.x + i, job.width), v), job.result[0] + i);
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(cracksRow)

static std::unique_ptr<State> prepareCracks(const Setup& setup)
{
    auto state = std::make_unique<CrackState>();
    const ParameterValue* p = setup.parameters;
    const CellCount cells = cellCount(p[0], setup, 512);
    state->seed = scalar::mixBits(static_cast<std::uint32_t>(setup.seed) + 0xc3ac45u);
    state->count = held(p[1].i[0], 0, 3) + 1;
    state->branching = held(p[2].f[0], 0.0f, 1.0f);
    state->reach = held(p[3].f[0], 1e-3f, 2.0f);
    state->widthVariation = 2.0f * held(p[5].f[0], 0.0f, 1.0f);
    state->warp = 0.5f * held(p[6].f[0], 0.0f, 1.0f);
    state->bevel = held(p[7].f[0], 1e-4f, 1.0f);
    state->output = static_cast<CrackOutput>(held(p[8].i[0], 0, 3));
    float finer = 1.0f, width = held(p[4].f[0], 0.0f, 0.5f);
    for (int k = 0; k < state->count; ++k) {
        CrackLevel& level = state->levels[k];
        // Three cells at least, so that a point never borders on itself.
        level.across = std::max(scalar::roundOf(static_cast<float>(cells.across) * finer), 3.0f);
        level.down = std::max(scalar::roundOf(static_cast<float>(cells.down) * finer), 3.0f);
        level.size = state->levels[0].across / level.across;
        level.width = width;
        level.seed = scalar::mixBits(state->seed + 0x9e3779b9u * static_cast<std::uint32_t>(k + 5));
        finer *= 2.3f;
        width *= 0.6f;
    }
    state->pixel = state->levels[0].across / static_cast<float>(setup.width);
    return state;
}

const NodeDeclaration cracksNode{
    "cracks",
    "Cracks",
    "Patterns",
    "A network of cracks that wander, branch and run dry: borders of random cells moved by noise, with "
    "borders of "
    "smaller cells branching off (distance from borders by bisectors between points). Lengths are shares of "
    "a cell. "
    "The same parameters with another output give matching maps.",
    ResultChannels::Grey,
    Chance::Seeded,
    {},
    {{"cells",
      ParameterType::Int2,
      {5, 0},
      3,
      128,
      "How many pieces across and down; 0 down takes as many as keep them square."},
     {"levels", ParameterType::Int, {2}, 0, 3, "How often finer cracks branch off."},
     {"branching", ParameterType::Float, {0.6}, 0, 1, "The share of pieces that finer cracks run into."},
     {"reach", ParameterType::Float, {0.4}, 0, 2, "How far branches run into a piece before they end."},
     {"width", ParameterType::Float, {0.05}, 0, 0.5, "Width of the widest cracks; each level is narrower."},
     {"widthvariation",
      ParameterType::Float,
      {0.4},
      0,
      1,
      "How much the width changes along a crack; high values close it in places."},
     {"warp", ParameterType::Float, {0.4}, 0, 1, "How far cracks wander."},
     {"bevel", ParameterType::Float, {0.06}, 0, 1, "Width of the worn edges beside a crack, in the height."},
     {"output",
      ParameterType::Choice,
      {0},
      0,
      3,
      "What to draw: height is 1 on the surface and 0 in cracks; mask is white in cracks; distance rises "
      "from "
      "the nearest crack of the first level; value is a random grey for each of the largest pieces.",
      {"height", "mask", "distance", "value"}}},
    prepareCracks,
    runcracksRow};

} // namespace vellor::nodes
#endif
