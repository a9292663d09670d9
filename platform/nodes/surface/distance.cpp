#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/surface/distancetransform.h"

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
};

std::unique_ptr<State> prepareDistance(const Setup& setup)
{
    auto state = std::make_unique<DistanceState>();
    const float radius = held(setup.parameters[0].f[0], 0.0f, 4.0f) * static_cast<float>(setup.width);
    state->inverseRadius = 1.0f / std::max(radius, 1e-3f);
    state->threshold = setup.parameters[1].f[0];
    state->side = static_cast<DistanceSide>(held(setup.parameters[2].i[0], 0, 2));
    return state;
}

std::vector<ScratchShape> distanceScratch(const State*, const Setup& setup)
{
    return {distanceColumnsShape(setup.width, setup.height)};
}

void distanceArea(const AreaJob& job)
{
    const auto& state = static_cast<const DistanceState&>(*job.state);
    if (job.pass == 0)
        return findDistanceColumns(job.operands[0], state.threshold, job.result, job.y0, job.y1);
    DistanceRows rows(job.scratch[0], job.result.width, job.result.height);
    const auto map = [&](float* row, float base, float gain) {
        for (int x = 0; x < job.result.width; ++x)
            row[x] = std::min(std::max(base + gain * row[x], 0.0f), 1.0f);
    };
    for (int y = job.y0; y < job.y1 && !job.stopped(); ++y) {
        float* row = rowOf(job.result, 0, y);
        switch (state.side) {
        case DistanceSide::Outside:
            rows.outside(y, row);
            map(row, 1.0f, -state.inverseRadius);
            break;
        case DistanceSide::Inside:
            rows.inside(y, row);
            map(row, 0.0f, state.inverseRadius);
            break;
        case DistanceSide::Signed:
            rows.both(y, row);
            map(row, 0.5f, 0.5f * state.inverseRadius);
            break;
        }
    }
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
      {"outside", "inside", "signed"}}},
    prepareDistance,
    nullptr,
    distanceArea,
    distanceScratch};

} // namespace vellor::nodes
