#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

// Pixels of a row look at the points of the same few rows of cells. So a chunk of a row first places those,
// in lines with a number for each column of cells, and a vector of neighbouring pixels takes the points of
// its few columns out of registers.
//
// Points keep within a disc in the middle of their cell. So what lies two cells away is at least a cell and a
// margin away, and is looked at only where a pixel has not found what it looks for within that distance. The
// results are those of looking at all points.

#ifndef VELLOR_CELLULAR_STATE
#define VELLOR_CELLULAR_STATE
namespace vellor::nodes {
namespace {

enum class CellularOutput
{
    Nearest,
    Second,
    Difference,
    Value,
    Edge
};
enum class Metric
{
    Euclidean,
    Manhattan,
    Chebyshev
};

struct CellularOctave
{
    int cellsX = 1, cellsY = 1;
    std::uint32_t seed = 0;
    float amplitude = 1.0f;
};

struct CellularState : State
{
    std::vector<CellularOctave> octaves;
    CellularOutput output = CellularOutput::Nearest;
    Metric metric = Metric::Euclidean;
    float jitter = 1.0f, evolution = 0.0f;
    float offset = 0.0f;
};

constexpr int kCellularChunk = 512;
constexpr int kReach = 3; // cells around the own one that may matter

/// Numbers of the points of a row of cells, a line for each.
struct PointLine
{
    alignas(64) float x[kCellularChunk + 64];        // within the cell
    alignas(64) float down[kCellularChunk + 64];     // from the row of pixels
    alignas(64) float vertical[kCellularChunk + 64]; // what that adds to a distance
    alignas(64) float value[kCellularChunk + 64];
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/sources/cellular.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

#include "platform/nodes/lattice-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

HWY_INLINE bool anyOf(M m)
{
    return !hn::AllFalse(FloatTag(), m.m);
}

/// A distance along one axis as the metric adds it up; the Euclidean one adds up squares.
template<Metric metric> HWY_INLINE F partOf(F distance)
{
    return metric == Metric::Euclidean ? distance * distance : absOf(distance);
}

template<Metric metric> HWY_INLINE F togetherOf(F a, F b)
{
    return metric == Metric::Chebyshev ? maxOf(a, b) : a + b;
}

template<Metric metric> HWY_INLINE F distanceOf(F together)
{
    return metric == Metric::Euclidean ? sqrtOf(together) : together;
}

/// The rows of cells around a chunk of a row of pixels; those further off are placed when they are wanted.
template<Metric metric> class CellRows
{
public:
    CellRows(const CellularState& state, const CellularOctave& octave, const RowJob& job, int from,
             int columns)
        : fy(centreOf(job.y, job.height) * static_cast<float>(octave.cellsY)), m_state(state),
          m_octave(octave), m_from(from), m_columns(columns)
    {
        m_row = static_cast<int>(fy);
        fy -= static_cast<float>(m_row);
        place(0);
    }

    /// Line dy is of the cells dy rows down, at most `reach` away.
    HWY_INLINE void upTo(int reach)
    {
        while (m_placed < reach) {
            ++m_placed;
            place(-m_placed);
            place(m_placed);
        }
    }
    HWY_INLINE const PointLine& line(int dy) const { return m_lines[dy + kReach]; }

    float fy; // of the row of pixels in its cells

private:
    /// Points lie evenly within a disc around the middle of their cell and circle around it in a turn of
    /// evolution, half of them backwards, so that time loops.
    HWY_NOINLINE void place(int dy)
    {
        PointLine& line = m_lines[dy + kReach];
        const int cells = m_octave.cellsY;
        const U cellY(static_cast<std::uint32_t>(((m_row + dy) % cells + cells) % cells));
        for (int i = 0; i < m_columns; i += kLanes) {
            const U cellX =
                wrappedCell(countFrom(static_cast<float>(m_from + i)), static_cast<float>(m_octave.cellsX));
            const U hash = hashLattice(cellX, cellY, U(m_octave.seed)), second = nextHash(hash);
            const F way = choose((second & U(1u)) == U(1u), F(m_state.evolution), F(-m_state.evolution));
            const SinCos turn = sinCosOfTurns(unitOf(hash) + way);
            const F radius = sqrtOf(unitOf(second)) * F(0.5f * m_state.jitter);
            const F down = F(0.5f) + radius * turn.sine - F(fy - static_cast<float>(dy));
            store(F(0.5f) + radius * turn.cosine, line.x + i);
            store(down, line.down + i);
            store(partOf<metric>(down), line.vertical + i);
            store(unitOf(nextHash(second)), line.value + i);
        }
    }

    const CellularState& m_state;
    const CellularOctave& m_octave;
    int m_from, m_columns, m_row = 0, m_placed = 0;
    std::array<PointLine, 2 * kReach + 1> m_lines;
};

/// What a vector of pixels sees around it.
template<Metric metric, class Columns> class View
{
public:
    HWY_INLINE View(CellRows<metric>& rows, const Columns& columns, F f, float margin)
        : m_rows(rows), m_columns(columns), m_f(f), m_margin(margin)
    {
    }

    HWY_INLINE F x(int dx, int dy) const
    {
        return read(m_rows.line(dy).x, dx) - (m_f - F(static_cast<float>(dx)));
    }
    HWY_INLINE F down(int dx, int dy) const { return read(m_rows.line(dy).down, dx); }
    HWY_INLINE F value(int dx, int dy) const { return read(m_rows.line(dy).value, dx); }
    HWY_INLINE F together(int dx, int dy) const
    {
        return togetherOf<metric>(partOf<metric>(x(dx, dy)), read(m_rows.line(dy).vertical, dx));
    }

    /// Calls look(dx, dy) for the cells up to two away that may hold points within limit(), a distance as
    /// together() gives it, and more; limit() may shrink on the way.
    template<class Look, class Limit> HWY_INLINE void around(const Look& look, const Limit& limit) const
    {
        m_rows.upTo(1);
        block(-1, 1, -1, 1, look);
        // A little less than the least distance, for what rounding may do to it.
        const float least = (1.0f + m_margin) * 0.9999f;
        if (anyOf(limit() > partOf<metric>(F(least))))
            sides(F(least), look, limit);
    }

    /// Calls look(dx, dy) for the cells three away.
    template<class Look> HWY_NOINLINE void farAround(const Look& look) const
    {
        m_rows.upTo(3);
        block(-3, 3, -3, -3, look);
        block(-3, 3, 3, 3, look);
        block(-3, -3, -2, 2, look);
        block(3, 3, -2, 2, look);
    }

private:
    HWY_INLINE F read(const float* line, int dx) const { return m_columns.read(line + dx); }

    template<class Look> static HWY_INLINE void block(int x0, int x1, int y0, int y1, const Look& look)
    {
        for (int dy = y0; dy <= y1; ++dy)
            for (int dx = x0; dx <= x1; ++dx)
                look(dx, dy);
    }

    /// The corners go with the rows: what may lie in a corner is as far away as the row at least.
    template<class Look, class Limit>
    HWY_NOINLINE void sides(F least, const Look& look, const Limit& limit) const
    {
        const F right = F(1.0f) - m_f;
        if (anyOf(limit() > partOf<metric>(least + m_f)))
            block(-2, -2, -1, 1, look);
        if (anyOf(limit() > partOf<metric>(least + right)))
            block(2, 2, -1, 1, look);
        m_rows.upTo(2);
        if (anyOf(limit() > partOf<metric>(least + F(m_rows.fy))))
            block(-2, 2, -2, -2, look);
        if (anyOf(limit() > partOf<metric>(least + F(1.0f - m_rows.fy))))
            block(-2, 2, 2, 2, look);
    }

    CellRows<metric>& m_rows;
    Columns m_columns;
    F m_f;
    float m_margin; // of cells, that points keep from their border
};

template<Metric metric, class Columns> HWY_INLINE F nearestDistance(const View<metric, Columns>& view)
{
    F first(1e9f);
    view.around([&](int dx, int dy) { first = minOf(first, view.together(dx, dy)); }, [&] { return first; });
    return distanceOf<metric>(first);
}

template<Metric metric, class Columns>
HWY_INLINE F secondDistance(const View<metric, Columns>& view, bool difference)
{
    F first(1e9f), second(1e9f);
    view.around(
        [&](int dx, int dy) {
            const F together = view.together(dx, dy);
            second = minOf(second, maxOf(first, together));
            first = minOf(first, together);
        },
        [&] { return second; });
    const F far = distanceOf<metric>(second);
    return difference ? far - distanceOf<metric>(first) : far;
}

template<Metric metric, class Columns>
HWY_INLINE F nearestValue(const View<metric, Columns>& view, float cellPixels)
{
    F first(1e9f), second(1e9f), own(0.0f), other(0.0f);
    view.around(
        [&](int dx, int dy) {
            const F together = view.together(dx, dy), value = view.value(dx, dy);
            const M closest = together < first;
            other = choose(closest, own, choose(together < second, value, other));
            own = choose(closest, value, own);
            second = minOf(second, maxOf(first, together));
            first = minOf(first, together);
        },
        [&] { return second; });
    // Half the difference is about the distance to the border: smooth it over a pixel.
    const F apart = distanceOf<metric>(second) - distanceOf<metric>(first);
    return lerpOf(other, own, minOf(F(0.5f) + apart * F(0.5f * cellPixels), F(1.0f)));
}

/// Twice the distance to the nearest line half way between the nearest point P and another one Q. From a
/// pixel at 0 that distance is (Q^2 - P^2) / (2 |Q - P|); fractions are compared by their squares, crosswise.
/// As it is at least half of |Q| - |P|, points further off than |P| and twice the distance found don't
/// matter.
template<class Columns> HWY_INLINE F edgeDistance(const View<Metric::Euclidean, Columns>& view)
{
    F first(1e9f), px(0.0f), py(0.0f);
    view.around(
        [&](int dx, int dy) {
            const F x = view.x(dx, dy), y = view.down(dx, dy), together = view.together(dx, dy);
            const M closest = together < first;
            first = choose(closest, together, first);
            px = choose(closest, x, px);
            py = choose(closest, y, py);
        },
        [&] { return first; });
    F above(1e9f), below(1.0f);
    const auto look = [&](int dx, int dy) {
        const F x = view.x(dx, dy), y = view.down(dx, dy);
        const F wayX = x - px, wayY = y - py;
        const F apart = (x + px) * wayX + (y + py) * wayY, square = wayX * wayX + wayY * wayY;
        const F apartSquare = apart * apart;
        const M closest = apartSquare * below < above * square; // never P itself
        above = choose(closest, apartSquare, above);
        below = choose(closest, square, below);
    };
    const F nearest = sqrtOf(first);
    view.around(look, [&] {
        const F reach = nearest + sqrtOf(above / below);
        return reach * reach;
    });
    const F edge = sqrtOf(above / below);
    if (!anyOf(nearest + edge > F(1.9999f)))
        return edge;
    view.farAround(look);
    return sqrtOf(above / below);
}

template<CellularOutput output, Metric metric, class Columns>
HWY_INLINE F valueOf(const View<metric, Columns>& view, float cellPixels)
{
    if constexpr (output == CellularOutput::Nearest)
        return nearestDistance(view);
    else if constexpr (output == CellularOutput::Value)
        return nearestValue(view, cellPixels);
    else if constexpr (output == CellularOutput::Edge)
        return edgeDistance(view);
    else
        return secondDistance(view, output == CellularOutput::Difference);
}

template<CellularOutput output, Metric metric, class Columns>
void addOctave(const CellularState& state, const CellularOctave& octave, const RowJob& job, int x, int count,
               float* sums)
{
    const float perPixel = static_cast<float>(octave.cellsX) / static_cast<float>(job.width);
    const auto columnOf = [&](int pixel) {
        return static_cast<int>((static_cast<float>(pixel) + 0.5f) * perPixel);
    };
    const int from = columnOf(x) - kReach, columns = columnOf(x + count + kLanes) + kReach + 1 - from;
    CellRows<metric> rows(state, octave, job, from, columns);
    const float margin = 0.5f - 0.5f * state.jitter;
    const F amplitude(octave.amplitude), step(perPixel);
    for (int i = 0; i < count; i += kLanes) {
        const F position = (countFrom(static_cast<float>(x + i)) + F(0.5f)) * step;
        const U column = toInteger(position);
        const View<metric, Columns> view(rows, Columns(column, from), position - toFloat(column), margin);
        store(load(sums + i) + amplitude * valueOf<output>(view, 1.0f / perPixel), sums + i);
    }
}

template<CellularOutput output, Metric metric> void cellularPixels(const RowJob& job)
{
    const auto& state = static_cast<const CellularState&>(*job.state);
    for (int done = 0; done < job.count; done += kCellularChunk) {
        const int count = std::min(kCellularChunk, job.count - done), x = job.x + done;
        float* result = job.result[0] + done;
        for (int i = 0; i < count; i += kLanes)
            store(F(state.offset), result + i);
        for (const CellularOctave& octave : state.octaves) {
            if (2 * octave.cellsX <= job.width)
                addOctave<output, metric, NearColumns>(state, octave, job, x, count, result);
            else
                addOctave<output, metric, FarColumns>(state, octave, job, x, count, result);
        }
    }
}

template<CellularOutput output> void cellularPixels(const RowJob& job)
{
    switch (static_cast<const CellularState&>(*job.state).metric) {
    case Metric::Euclidean:
        return cellularPixels<output, Metric::Euclidean>(job);
    case Metric::Manhattan:
        return cellularPixels<output, Metric::Manhattan>(job);
    case Metric::Chebyshev:
        return cellularPixels<output, Metric::Chebyshev>(job);
    }
}

void cellularRow(const RowJob& job)
{
    switch (static_cast<const CellularState&>(*job.state).output) {
    case CellularOutput::Nearest:
        return cellularPixels<CellularOutput::Nearest>(job);
    case CellularOutput::Second:
        return cellularPixels<CellularOutput::Second>(job);
    case CellularOutput::Difference:
        return cellularPixels<CellularOutput::Difference>(job);
    case CellularOutput::Value:
        return cellularPixels<CellularOutput::Value>(job);
    case CellularOutput::Edge:
        return cellularPixels<CellularOutput::Edge, Metric::Euclidean>(job);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(cellularRow)

/// What an octave that is too fine for the pixels has for a mean, so that the brightness does not change with
/// the size. Measured with full jitter.
static float meanOfOutput(CellularOutput output, Metric metric)
{
    static constexpr float kMeans[3][5] = {{0.421f, 0.700f, 0.279f, 0.5f, 0.335f},
                                           {0.531f, 0.874f, 0.343f, 0.5f, 0.335f},
                                           {0.374f, 0.624f, 0.251f, 0.5f, 0.335f}};
    return kMeans[static_cast<int>(metric)][static_cast<int>(output)];
}

static std::unique_ptr<State> prepareCellular(const Setup& setup)
{
    auto state = std::make_unique<CellularState>();
    const ParameterValue* p = setup.parameters;
    const CellCount cells = cellCount(p[0], setup);
    CellularOctave octave{cells.across, cells.down, 0, 1.0f};
    state->output = static_cast<CellularOutput>(held(p[1].i[0], 0, 4));
    state->metric = static_cast<Metric>(held(p[2].i[0], 0, 2));
    state->jitter = held(p[3].f[0], 0.0f, 1.0f);
    state->evolution = held(p[4].f[0] - scalar::floorOf(p[4].f[0]), 0.0f, 1.0f);
    const int octaves = held(p[5].i[0], 1, 12);
    const float gain = held(p[6].f[0], 0.0f, 1.0f);
    float sum = 0.0f, undrawn = 0.0f;
    octave.seed = scalar::mixBits(static_cast<std::uint32_t>(setup.seed) + 0x13198a2eu);
    for (int i = 0; i < octaves; ++i) {
        const bool fits = octave.cellsX <= setup.width && octave.cellsY <= setup.height;
        const bool fine = 2 * octave.cellsX > setup.width || 2 * octave.cellsY > setup.height;
        if (fits && (i == 0 || !fine))
            state->octaves.push_back(octave);
        else
            undrawn += octave.amplitude;
        sum += octave.amplitude;
        octave.cellsX = std::min(octave.cellsX * 2, 1 << 20);
        octave.cellsY = std::min(octave.cellsY * 2, 1 << 20);
        octave.amplitude *= gain;
        octave.seed = scalar::nextHash(octave.seed);
    }
    for (CellularOctave& drawn : state->octaves)
        drawn.amplitude /= sum;
    state->offset = undrawn * meanOfOutput(state->output, state->metric) / sum;
    return state;
}

const NodeDeclaration cellularNode{
    "cellular",
    "Cellular Noise",
    "Sources",
    "Distances to points scattered one to a cell, after S. Worley (1996). Distances count in cells.",
    ResultChannels::Grey,
    Chance::Seeded,
    {},
    {{"scale",
      ParameterType::Int2,
      {8, 0},
      1,
      256,
      "Cells across and down the picture; 0 down takes as many as keep the cells square."},
     {"output",
      ParameterType::Choice,
      {0},
      0,
      4,
      "f1 is the distance to the nearest point; f2 to the second; f2-f1 their difference; value a random "
      "grey for each cell; "
      "edge twice the distance to the border between cells.",
      {"f1", "f2", "f2-f1", "value", "edge"}},
     {"metric",
      ParameterType::Choice,
      {0},
      0,
      2,
      "How distances are measured: as the crow flies, along the axes, or along the longer axis; edge is "
      "always the first.",
      {"euclidean", "manhattan", "chebyshev"}},
     {"jitter", ParameterType::Float, {1.0}, 0, 1, "How far points lie from the middle of their cells."},
     {"evolution", ParameterType::Float, {0.0}, 0, 1, "Moves the points; comes back at every whole number."},
     {"octaves",
      ParameterType::Int,
      {1},
      1,
      12,
      "Layers of ever finer noise; those finer than the pixels are left out."},
     {"gain", ParameterType::Float, {0.5}, 0, 1, "How strong each octave is, compared to the one before."}},
    prepareCellular,
    runcellularRow};

} // namespace vellor::nodes
#endif
