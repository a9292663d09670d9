#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/surface/distancetransform.h"
#include "platform/nodes/surface/edgelines.h"

namespace vellor::nodes {
namespace {

enum class DistanceSide
{
    Outside,
    Inside,
    Signed
};

struct DistanceState : State
{
    float threshold = 0.5f, inverseRadius = 1.0f; // per pixel
    DistanceSide side = DistanceSide::Outside;
    bool antialiased = false;
};

std::unique_ptr<State> prepareDistance(const Setup& setup)
{
    auto state = std::make_unique<DistanceState>();
    const float radius = held(setup.parameters[0].f[0], 0.0f, 4.0f) * static_cast<float>(setup.width);
    state->inverseRadius = 1.0f / std::max(radius, 1e-3f);
    state->threshold = setup.parameters[1].f[0];
    state->side = static_cast<DistanceSide>(held(setup.parameters[2].i[0], 0, 2));
    state->antialiased = setup.parameters[3].i[0] == 1;
    return state;
}

std::vector<ScratchShape> distanceScratch(const State* state, const Setup& setup)
{
    const ScratchShape columns = distanceColumnsShape(setup.width, setup.height);
    if (static_cast<const DistanceState*>(state)->antialiased)
        return {{setup.width, setup.height, 4}, columns};
    return {columns};
}

/// The result where distances are `base` and fall or rise by `gain` a pixel.
void mapRow(float* row, int count, float base, float gain)
{
    for (int x = 0; x < count; ++x)
        row[x] = std::min(std::max(base + gain * row[x], 0.0f), 1.0f);
}

/// Distances between pixels' centres, signed ones to their borders.
void pixelDistances(const DistanceState& state, const AreaJob& job)
{
    DistanceRows rows(job.scratch[0], job.result.width, job.result.height);
    for (int y = job.y0; y < job.y1 && !job.stopped(); ++y) {
        float* row = rowOf(job.result, 0, y);
        switch (state.side) {
        case DistanceSide::Outside:
            rows.outside(y, row);
            mapRow(row, job.result.width, 1.0f, -state.inverseRadius);
            break;
        case DistanceSide::Inside:
            rows.inside(y, row);
            mapRow(row, job.result.width, 0.0f, state.inverseRadius);
            break;
        case DistanceSide::Signed:
            rows.both(y, row);
            mapRow(row, job.result.width, 0.5f, 0.5f * state.inverseRadius);
            break;
        }
    }
}

/// Distances to edges, which are positive inside.
void edgeDistances(const DistanceState& state, const AreaJob& job)
{
    constexpr float kBase[] = {1.0f, 0.0f, 0.5f}, kGain[] = {1.0f, 1.0f, 0.5f};
    const int side = static_cast<int>(state.side);
    EdgeDistanceRows rows(job.operands[0], state.threshold, job.scratch[0], job.scratch[1]);
    for (int y = job.y0; y < job.y1 && !job.stopped(); ++y) {
        float* row = rowOf(job.result, 0, y);
        rows.read(y, row);
        mapRow(row, job.result.width, kBase[side], kGain[side] * state.inverseRadius);
    }
}

void distanceArea(const AreaJob& job)
{
    const auto& state = static_cast<const DistanceState&>(*job.state);
    if (!state.antialiased)
        return job.pass == 0
                   ? findDistanceColumns(job.operands[0], state.threshold, job.result, job.y0, job.y1)
                   : pixelDistances(state, job);
    if (job.pass == 0)
        return findEdgeLines(job.operands[0], state.threshold, job.result, job.y0, job.y1);
    if (job.pass == 1)
        return findDistanceColumns(job.scratch[0], 0.5f, job.result, job.y0, job.y1);
    edgeDistances(state, job);
}

} // namespace

const NodeDeclaration distanceNode{
    "distance",
    "Distance",
    "Surface",
    "Exact distance from the shapes of a mask, by rows after columns (A. Meijster et al., 2000; P. "
    "Felzenszwalb and D. Huttenlocher, 2012). Wraps around.",
    ResultChannels::Grey,
    Chance::None,
    {{"mask", OperandChannels::Grey, true, "The mask."}},
    {{"radius",
      ParameterType::Float,
      {0.1},
      0,
      1,
      "The distance over which the value goes through its range, in shares of the picture's width."},
     {"threshold", ParameterType::Float, {0.5}, 0, 1, "From which value on a pixel belongs to the shapes."},
     {"side",
      ParameterType::Choice,
      {0},
      0,
      2,
      "Which side of the edges is measured: outside, white falls to black away from the shapes; inside, "
      "black "
      "rises to white from their edges; signed, black outside rises to white inside and is 0.5 at the edges.",
      {"outside", "inside", "signed"}},
     {"edges",
      ParameterType::Choice,
      {0},
      0,
      1,
      "Where edges lie: pixels, on the borders of whole pixels, measured from centre to centre unless "
      "signed; "
      "antialiased, between pixels' centres, as the greys of a mask with smooth edges tell (S. Gustavson and "
      "R. "
      "Strand, 2011), at about seven times the cost.",
      {"pixels", "antialiased"}}},
    prepareDistance,
    nullptr,
    distanceArea,
    distanceScratch};

} // namespace vellor::nodes
