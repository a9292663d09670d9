#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

// All pixels of a row that lie in one cell look at the same points. So a chunk of a row first places the
// points of all cells around it, and then works cell by cell with those as constants.

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
    float scale = 1.0f, offset = 0.0f;
    int reach = 1; // cells around the own one that are looked at
};

constexpr int kCellularChunk = 256;
constexpr int kMostReach = 2;

/// Points of the cells around a chunk: a line for each row of cells.
struct CellPoints
{
    static constexpr int kColumns = kCellularChunk + 48; // lines stay aligned
    alignas(64) float x[2 * kMostReach + 1][kColumns];   // within their cell
    alignas(64) float y[2 * kMostReach + 1][kColumns];
    alignas(64) float value[2 * kMostReach + 1][kColumns];
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/sources/cellular.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

/// Points lie evenly within a disc around the middle of their cell and circle around it in a turn of
/// evolution, half of them backwards, so that time loops.
void placePoints(const CellularState& state, const CellularOctave& octave, int firstColumn, int columns,
                 int row, CellPoints& points)
{
    const F width(static_cast<float>(octave.cellsX));
    for (int dy = -state.reach; dy <= state.reach; ++dy) {
        const int line = dy + state.reach;
        const int cellY = ((row + dy) % octave.cellsY + octave.cellsY) % octave.cellsY;
        for (int i = 0; i < columns; i += kLanes) {
            const F column = countFrom(static_cast<float>(firstColumn + i));
            const U cellX = toInteger(column - width * floorOf(column / width));
            const U hash = hashLattice(cellX, U(static_cast<std::uint32_t>(cellY)), U(octave.seed));
            const U second = nextHash(hash);
            const F way = choose((second & U(1u)) == U(1u), F(state.evolution), F(-state.evolution));
            const SinCos turn = sinCosOfTurns(unitOf(hash) + way);
            const F radius = sqrtOf(unitOf(second)) * F(0.5f * state.jitter);
            store(F(0.5f) + radius * turn.cosine, points.x[line] + i);
            store(F(0.5f) + radius * turn.sine, points.y[line] + i);
            store(unitOf(nextHash(second)), points.value[line] + i);
        }
    }
}

/// Distance by a metric; the square of it for the Euclidean one.
template<Metric metric> HWY_INLINE F lengthOf(F dx, F dy)
{
    if constexpr (metric == Metric::Euclidean)
        return dx * dx + dy * dy;
    else if constexpr (metric == Metric::Manhattan)
        return absOf(dx) + absOf(dy);
    else
        return maxOf(absOf(dx), absOf(dy));
}

struct Nearest
{
    F first, second;     // distances
    F value, otherValue; // of the nearest and the second
    F x, y;              // the nearest point, from the pixel
};

template<Metric metric>
HWY_INLINE Nearest nearestOf(const CellPoints& points, int reach, int column, F fx, F fy)
{
    Nearest n{F(1e9f), F(1e9f), F(0.0f), F(0.0f), F(0.0f), F(0.0f)};
    for (int dy = -reach; dy <= reach; ++dy) {
        const int line = dy + reach;
        for (int dx = -reach; dx <= reach; ++dx) {
            const F x = F(points.x[line][column + dx] + static_cast<float>(dx)) - fx;
            const F y = F(points.y[line][column + dx] + static_cast<float>(dy)) - fy;
            const F value(points.value[line][column + dx]);
            const F length = lengthOf<metric>(x, y);
            const M closest = length < n.first, second = length < n.second;
            n.otherValue = choose(closest, n.value, choose(second, value, n.otherValue));
            n.second = choose(closest, n.first, choose(second, length, n.second));
            n.value = choose(closest, value, n.value);
            n.first = choose(closest, length, n.first);
            n.x = choose(closest, x, n.x);
            n.y = choose(closest, y, n.y);
        }
    }
    if constexpr (metric == Metric::Euclidean) {
        n.first = sqrtOf(n.first);
        n.second = sqrtOf(n.second);
    }
    return n;
}

/// Distance to the nearest line half way between the nearest point and another.
HWY_INLINE F edgeDistance(const CellPoints& points, int reach, int column, F fx, F fy, const Nearest& nearest)
{
    F best(1e9f);
    for (int dy = -reach; dy <= reach; ++dy) {
        const int line = dy + reach;
        for (int dx = -reach; dx <= reach; ++dx) {
            const F x = F(points.x[line][column + dx] + static_cast<float>(dx)) - fx;
            const F y = F(points.y[line][column + dx] + static_cast<float>(dy)) - fy;
            const F wayX = x - nearest.x, wayY = y - nearest.y;
            const F square = wayX * wayX + wayY * wayY;
            const F along = ((x + nearest.x) * wayX + (y + nearest.y) * wayY) * F(0.5f);
            best = choose(square > F(1e-8f), minOf(best, along / sqrtOf(maxOf(square, F(1e-8f)))), best);
        }
    }
    return best;
}

template<Metric metric>
HWY_INLINE F cellularValue(const CellularState& state, const CellPoints& points, int column, F fx, F fy,
                           float cellPixels)
{
    const Nearest n = nearestOf<metric>(points, state.reach, column, fx, fy);
    switch (state.output) {
    case CellularOutput::Nearest:
        return n.first;
    case CellularOutput::Second:
        return n.second;
    case CellularOutput::Difference:
        return n.second - n.first;
    case CellularOutput::Edge:
        return edgeDistance(points, state.reach, column, fx, fy, n) * F(2.0f);
    case CellularOutput::Value:
        break;
    }
    // Half the difference is about the distance to the border: smooth it over a pixel.
    const F own = minOf(F(0.5f) + (n.second - n.first) * F(0.5f * cellPixels), F(1.0f));
    return lerpOf(n.otherValue, n.value, own);
}

template<Metric metric>
void addOctave(const CellularState& state, const CellularOctave& octave, const RowJob& job, int x, int count,
               float* sums)
{
    const float perPixel = static_cast<float>(octave.cellsX) / static_cast<float>(job.width);
    const auto columnOf = [&](int pixel) {
        return static_cast<int>((static_cast<float>(pixel) + 0.5f) * perPixel);
    };
    const float down = centreOf(job.y, job.height) * static_cast<float>(octave.cellsY);
    const int row = static_cast<int>(down);
    const int first = columnOf(x) - state.reach, last = columnOf(x + count - 1) + state.reach;
    CellPoints points;
    placePoints(state, octave, first, last - first + 1, row, points);
    const F fy(down - static_cast<float>(row));
    alignas(64) float values[kCellularChunk + 32];
    for (int i = 0; i < count;) {
        const int cell = columnOf(x + i);
        int end = i + 1;
        while (end < count && columnOf(x + end) == cell)
            ++end;
        for (; i < end; i += kLanes) {
            const F position = (countFrom(static_cast<float>(x + i)) + F(0.5f)) * F(perPixel);
            storeAt(cellularValue<metric>(state, points, cell - first, position - F(static_cast<float>(cell)),
                                          fy, 1.0f / perPixel),
                    values + i);
        }
        i = end;
    }
    for (int i = 0; i < count; i += kLanes)
        store(load(sums + i) + F(octave.amplitude) * load(values + i), sums + i);
}

void cellularRow(const RowJob& job)
{
    const auto& state = static_cast<const CellularState&>(*job.state);
    for (int done = 0; done < job.count; done += kCellularChunk) {
        const int count = std::min(kCellularChunk, job.count - done), x = job.x + done;
        float* result = job.result[0] + done;
        for (int i = 0; i < count; i += kLanes)
            store(F(0.0f), result + i);
        for (const CellularOctave& octave : state.octaves) {
            switch (state.metric) {
            case Metric::Euclidean:
                addOctave<Metric::Euclidean>(state, octave, job, x, count, result);
                break;
            case Metric::Manhattan:
                addOctave<Metric::Manhattan>(state, octave, job, x, count, result);
                break;
            case Metric::Chebyshev:
                addOctave<Metric::Chebyshev>(state, octave, job, x, count, result);
                break;
            }
        }
        for (int i = 0; i < count; i += kLanes)
            store(load(result + i) * F(state.scale) + F(state.offset), result + i);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(cellularRow)

/// What an octave that is too fine for the pixels has for a mean, so that the brightness does not change with
/// the size.
static float meanOfOutput(CellularOutput output)
{
    switch (output) {
    case CellularOutput::Nearest:
        return 0.42f;
    case CellularOutput::Second:
        return 0.75f;
    case CellularOutput::Difference:
        return 0.33f;
    case CellularOutput::Edge:
        return 0.34f;
    case CellularOutput::Value:
        break;
    }
    return 0.5f;
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
    state->evolution = p[4].f[0] - scalar::floorOf(p[4].f[0]);
    state->reach = state->output == CellularOutput::Nearest ? 1 : 2;
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
    state->scale = 1.0f / sum;
    state->offset = undrawn * meanOfOutput(state->output) / sum;
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
