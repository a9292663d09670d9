#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

// Cracks run along the borders between the cells of random points, moved by noise so that they wander. Within
// a cell finer cracks branch off: borders of smaller cells, as wide as they are close to the coarser crack
// that they start from. Lengths are shares of a cell's width.
//
// Most neighbouring pixels lie in the same cell. So a vector of pixels takes turns with the few cells that it
// touches, and what those need, the points around and the bisectors, is worked out once and kept as long as
// the row stays near them.

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

constexpr int kCrackChunk = 512;
constexpr int kNoColumn = std::numeric_limits<int>::min();

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/patterns/cracks.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/lattice-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

HWY_INLINE bool anyOf(M m)
{
    return !hn::AllFalse(FloatTag(), m.m);
}

/// Two smooth random numbers, -1 to 1, along a chunk of a row of pixels. Noise of cells finer than two pixels
/// counts as its mean, 0.
class NoiseRow
{
public:
    NoiseRow(const RowJob& job, int x, int count, float across, float down, std::uint32_t seed)
        : m_across(across), m_shown(2.0f * across <= static_cast<float>(job.width))
    {
        if (!m_shown)
            return;
        const float perPixel = across / static_cast<float>(job.width);
        m_first = static_cast<int>(static_cast<float>(x) * perPixel) - 1;
        const int columns = static_cast<int>(static_cast<float>(x + count + kLanes) * perPixel) + 3 - m_first;
        const float y = centreOf(job.y, job.height) * down, row = scalar::floorOf(y), fy = y - row;
        const F ty(fy * fy * (3.0f - 2.0f * fy));
        const U y0 = wrappedCell(F(row), down), y1 = wrappedCell(F(row + 1.0f), down);
        const U low(0xffffu);
        const auto mixed = [&](U above, U below) {
            return lerpOf(toFloat(above), toFloat(below), ty) * F(2.0f / 65535.0f) - F(1.0f);
        };
        for (int i = 0; i < columns; i += kLanes) {
            const U cell = wrappedCell(countFrom(static_cast<float>(m_first + i)), across);
            const U above = hashLattice(cell, y0, U(seed)), below = hashLattice(cell, y1, U(seed));
            // A hash is enough for two numbers of 16 bits.
            store(mixed(above & low, below & low), m_x + i);
            store(mixed(above >> 16, below >> 16), m_y + i);
        }
    }

    HWY_INLINE void at(F u, F& x, F& y) const
    {
        x = y = F(0.0f);
        if (!m_shown)
            return;
        const F position = u * F(m_across), column = floorOf(position);
        const F f = position - column, t = f * f * (F(3.0f) - F(2.0f) * f);
        const NearColumns columns(toInteger(column), m_first);
        x = lerpOf(columns.read(m_x), columns.read(m_x + 1), t);
        y = lerpOf(columns.read(m_y), columns.read(m_y + 1), t);
    }

private:
    float m_across;
    bool m_shown;
    int m_first = 0;
    alignas(64) float m_x[kCrackChunk / 2 + 96];
    alignas(64) float m_y[kCrackChunk / 2 + 96];
};

/// What pixels in a cell, or nearest to its point, want to know of it. Places are from the cell's corner.
struct CrackCell
{
    // Its own point is the fifth of the nine around it; the rest of each line fills up vectors.
    alignas(64) float x[16], y[16];
    // Pixels nearest to its point are at - normal * place away from the bisector with each other point.
    alignas(64) float normalX[16], normalY[16], at[16];
    int column = kNoColumn, row = 0; // which may lie outside the picture
    float value = 0.0f, branching = 0.0f, far = 0.0f;
};

/// The cells of a level that a row has come by last: a window of four by four.
class CrackCells
{
public:
    CrackCells(const CrackState& state, const CrackLevel& level) : m_state(state), m_level(level) {}

    HWY_INLINE const CrackCell& at(float column, float row)
    {
        const int c = static_cast<int>(column), r = static_cast<int>(row);
        CrackCell& cell = m_cells[(c & 3) | (r & 3) << 2];
        if (cell.column != c || cell.row != r)
            place(cell, c, r);
        return cell;
    }

private:
    HWY_NOINLINE void place(CrackCell& cell, int column, int row) const
    {
        alignas(64) static constexpr float kColumns[16] = {-1, 0, 1, -1, 0, 1, -1, 0, 1};
        alignas(64) static constexpr float kRows[16] = {-1, -1, -1, 0, 0, 0, 1, 1, 1};
        cell.column = column;
        cell.row = row;
        const F scale(0.8f / 65535.0f);
        for (int i = 0; i < 16; i += kLanes) {
            const F c = load(kColumns + i), r = load(kRows + i);
            const U hash =
                hashLattice(wrappedCell(c + F(static_cast<float>(column)), m_level.across),
                            wrappedCell(r + F(static_cast<float>(row)), m_level.down), U(m_level.seed));
            store(c + F(0.1f) + toFloat(hash & U(0xffffu)) * scale, cell.x + i);
            store(r + F(0.1f) + toFloat(hash >> 16) * scale, cell.y + i);
        }
        const F ownX(cell.x[4]), ownY(cell.y[4]);
        for (int i = 0; i < 16; i += kLanes) {
            const F x = load(cell.x + i), y = load(cell.y + i);
            const F wayX = x - ownX, wayY = y - ownY;
            const F length = maxOf(sqrtOf(wayX * wayX + wayY * wayY), F(1e-6f));
            const F normalX = wayX / length, normalY = wayY / length;
            store(normalX, cell.normalX + i);
            store(normalY, cell.normalY + i);
            store(F(0.5f) * ((x + ownX) * normalX + (y + ownY) * normalY), cell.at + i);
        }
        const std::uint32_t hash =
            scalar::hashLattice(wrapped(column, static_cast<int>(m_level.across)),
                                wrapped(row, static_cast<int>(m_level.down)), m_level.seed ^ 0x5bd1e995u);
        const std::uint32_t second = scalar::nextHash(hash);
        cell.value = scalar::unitOf(hash);
        cell.branching = scalar::unitOf(second) < m_state.branching ? 1.0f : 0.0f;
        cell.far = m_state.reach * m_level.size * (0.5f + scalar::unitOf(scalar::nextHash(second)));
    }

    const CrackState& m_state;
    const CrackLevel& m_level;
    std::array<CrackCell, 16> m_cells;
};

/// Calls visit(column, row, lanes) for each cell that the given lanes lie in.
template<class Visit> HWY_INLINE void forEachCell(F column, F row, M lanes, const Visit& visit)
{
    alignas(64) float columns[kLanes], rows[kLanes];
    store(column, columns);
    store(row, rows);
    for (M left = lanes; anyOf(left);) {
        const std::size_t lane = hn::FindKnownFirstTrue(FloatTag(), left.m);
        const M here = (column == F(columns[lane])) & (row == F(rows[lane]));
        visit(columns[lane], rows[lane], here);
        left = left & !here;
    }
}

struct Border
{
    F distance;              // from the border, in cells of the first level
    F value, branching, far; // of the cell
};

/// The nearest point's cell and the distance from its border: the least of those from the bisectors with the
/// points around it. Only of the given lanes; the others get 0.
HWY_INLINE Border borderAt(CrackCells& cells, const CrackLevel& level, F u, F v, M lanes)
{
    const F x = u * F(level.across), y = v * F(level.down);
    const F column = floorOf(x), row = floorOf(y);
    const F fx = x - column, fy = y - row;
    F stepX(0.0f), stepY(0.0f);
    forEachCell(column, row, lanes, [&](float c, float r, M here) {
        const CrackCell& cell = cells.at(c, r);
        F best(1e9f), bestX(0.0f), bestY(0.0f);
        for (int k = 0; k < 9; ++k) {
            const F dx = F(cell.x[k]) - fx, dy = F(cell.y[k]) - fy;
            const F square = dx * dx + dy * dy;
            const M nearer = square < best;
            best = minOf(best, square);
            bestX = choose(nearer, F(static_cast<float>(k % 3 - 1)), bestX);
            bestY = choose(nearer, F(static_cast<float>(k / 3 - 1)), bestY);
        }
        stepX = choose(here, bestX, stepX);
        stepY = choose(here, bestY, stepY);
    });
    const F nearX = fx - stepX, nearY = fy - stepY;
    Border border{F(0.0f), F(0.0f), F(0.0f), F(1.0f)};
    forEachCell(column + stepX, row + stepY, lanes, [&](float c, float r, M here) {
        const CrackCell& cell = cells.at(c, r);
        F least(1e9f);
        for (int k = 0; k < 9; ++k)
            if (k != 4)
                least =
                    minOf(least, F(cell.at[k]) - (F(cell.normalX[k]) * nearX + F(cell.normalY[k]) * nearY));
        border.distance = choose(here, least, border.distance);
        border.value = choose(here, F(cell.value), border.value);
        border.branching = choose(here, F(cell.branching), border.branching);
        border.far = choose(here, F(cell.far), border.far);
    });
    border.distance = maxOf(border.distance, F(0.0f)) * F(level.size);
    return border;
}

/// A chunk of a row of pixels.
class CrackRow
{
public:
    CrackRow(const CrackState& state, const RowJob& job, int x, int count)
        : m_state(state), m_wide(noiseRow(job, x, count, 2.0f, 1)), m_fine(noiseRow(job, x, count, 6.0f, 2)),
          m_finest(noiseRow(job, x, count, 15.0f, 3)), m_along(noiseRow(job, x, count, 3.0f, 4))
    {
    }

    HWY_INLINE F at(std::vector<CrackCells>& cells, F u, F v) const
    {
        const CrackLevel& first = m_state.levels[0];
        F wideX, wideY, fineX, fineY, finestX, finestY, along, unused;
        m_wide.at(u, wideX, wideY);
        m_fine.at(u, fineX, fineY);
        m_finest.at(u, finestX, finestY);
        m_along.at(u, along, unused);
        const F moveX = (wideX + fineX * F(0.16f) + finestX * F(0.04f)) * F(m_state.warp);
        const F moveY = (wideY + fineY * F(0.16f) + finestY * F(0.04f)) * F(m_state.warp);
        const F movedU = u + moveX * F(1.0f / first.across), movedV = v + moveY * F(1.0f / first.down);
        if (m_state.output == CrackOutput::Distance || m_state.output == CrackOutput::Value) {
            const Border border = borderAt(cells[0], first, movedU, movedV, u == u);
            return m_state.output == CrackOutput::Value
                       ? border.value
                       : clampOf(border.distance * F(2.0f), F(0.0f), F(1.0f));
        }
        // How wide cracks are here: noise along them, which also closes some.
        const F wider = maxOf(F(1.0f) + (along + finestY * F(0.5f)) * F(m_state.widthVariation), F(0.0f));
        F cover(0.0f), worn(0.0f), fade(1.0f);
        for (std::size_t k = 0; k < cells.size(); ++k) {
            const CrackLevel& level = m_state.levels[k];
            const M lanes = fade > F(0.0f);
            if (!anyOf(lanes))
                break;
            const Border border = borderAt(cells[k], level, movedU, movedV, lanes);
            const F half = F(0.5f * level.width) * wider * fade;
            const F open = half + half;
            const F inside =
                clampOf((half - border.distance) * F(1.0f / m_state.pixel) + F(0.5f), F(0.0f), F(1.0f)) *
                minOf(open * F(1.0f / m_state.pixel), F(1.0f));
            cover = maxOf(cover, inside);
            const F beside =
                F(1.0f) -
                clampOf((border.distance - half) * F(1.0f / (m_state.bevel * level.size)), F(0.0f), F(1.0f));
            worn = maxOf(worn, beside * beside * fade * minOf(wider, F(1.0f)));
            // The next finer cracks: in some cells, thinner the farther they get from this level's.
            fade =
                fade * border.branching * clampOf(F(1.0f) - border.distance / border.far, F(0.0f), F(1.0f));
        }
        return m_state.output == CrackOutput::Mask ? cover : (F(1.0f) - cover) * (F(1.0f) - worn * F(0.3f));
    }

private:
    NoiseRow noiseRow(const RowJob& job, int x, int count, float finer, std::uint32_t seed) const
    {
        const CrackLevel& first = m_state.levels[0];
        return NoiseRow(job, x, count, first.across * finer, first.down * finer, m_state.seed + seed);
    }

    const CrackState& m_state;
    NoiseRow m_wide, m_fine, m_finest, m_along;
};

void cracksRow(const RowJob& job)
{
    const auto& state = static_cast<const CrackState&>(*job.state);
    std::vector<CrackCells> cells;
    for (int k = 0; k < state.count; ++k)
        cells.emplace_back(state, state.levels[k]);
    const F v(centreOf(job.y, job.height));
    for (int done = 0; done < job.count; done += kCrackChunk) {
        const int x = job.x + done, count = std::min(kCrackChunk, job.count - done);
        const CrackRow row(state, job, x, count);
        for (int i = 0; i < count; i += kLanes)
            store(row.at(cells, centresFrom(x + i, job.width), v), job.result[0] + done + i);
    }
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
