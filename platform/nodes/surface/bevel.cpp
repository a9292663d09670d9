#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"
#include "platform/nodes/surface/distancetransform.h"

namespace vellor::nodes {
namespace {

enum class BevelSide
{
    Inside,
    Outside,
    Both
};

enum class BevelProfile
{
    Straight,
    Round,
    Hollow,
    Smooth
};

struct BevelState : State
{
    float threshold = 0.5f, inverseWidth = 1.0f; // per pixel
    BevelSide side = BevelSide::Inside;
    BevelProfile profile = BevelProfile::Straight;
};

std::unique_ptr<State> prepareBevel(const Setup& setup)
{
    auto state = std::make_unique<BevelState>();
    const ParameterValue* p = setup.parameters;
    const float width = held(p[0].f[0], 0.0f, 4.0f) * static_cast<float>(setup.width);
    state->inverseWidth = 1.0f / std::max(width, 0.5f);
    state->profile = static_cast<BevelProfile>(held(p[1].i[0], 0, 3));
    state->side = static_cast<BevelSide>(held(p[2].i[0], 0, 2));
    state->threshold = p[3].f[0];
    return state;
}

std::vector<ScratchShape> bevelScratch(const State*, const Setup& setup)
{
    return {distanceColumnsShape(setup.width, setup.height)};
}

/// The height at a share of the way up, 0 to 1.
float heightOf(BevelProfile profile, float t)
{
    switch (profile) {
    case BevelProfile::Round:
        return scalar::sqrtOf(t * (2.0f - t));
    case BevelProfile::Hollow:
        return 1.0f - scalar::sqrtOf((1.0f - t) * (1.0f + t));
    case BevelProfile::Smooth:
        return t * t * (3.0f - 2.0f * t);
    case BevelProfile::Straight:
        break;
    }
    return t;
}

void bevelArea(const AreaJob& job)
{
    const auto& state = static_cast<const BevelState&>(*job.state);
    if (job.pass == 0)
        return findDistanceColumns(job.operands[0], state.threshold, job.result, job.y0, job.y1);
    // The way up starts this share of the bevel's width inside of the edge.
    const float start = state.side == BevelSide::Inside    ? 0.0f
                        : state.side == BevelSide::Outside ? 1.0f
                                                           : 0.5f;
    DistanceRows rows(job.scratch[0], job.result.width, job.result.height);
    for (int y = job.y0; y < job.y1 && !job.stopped(); ++y) {
        float* row = rowOf(job.result, 0, y);
        rows.both(y, row);
        for (int x = 0; x < job.result.width; ++x)
            row[x] = heightOf(state.profile, held(row[x] * state.inverseWidth + start, 0.0f, 1.0f));
    }
}

} // namespace

const NodeDeclaration bevelNode{
    "bevel",
    "Bevel",
    "Surface",
    "Raises the shapes of a mask over slopes of even width along their edges, from the exact distance to "
    "them. Wraps around.",
    ResultChannels::Grey,
    Chance::None,
    {{"mask", OperandChannels::Grey, true, "The mask."}},
    {{"width",
      ParameterType::Float,
      {0.03},
      0,
      0.5,
      "How wide the slopes are, in shares of the picture's width."},
     {"profile",
      ParameterType::Choice,
      {0},
      0,
      3,
      "The slope's section: straight; round, a quarter of a circle that levels out above; hollow, one that "
      "levels out below; smooth, level at both ends.",
      {"straight", "round", "hollow", "smooth"}},
     {"side",
      ParameterType::Choice,
      {0},
      0,
      2,
      "Where the slopes lie: inside of the edges, outside of them, or half on both sides.",
      {"inside", "outside", "both"}},
     {"threshold", ParameterType::Float, {0.5}, 0, 1, "From which value on a pixel belongs to the shapes."}},
    prepareBevel,
    nullptr,
    bevelArea,
    bevelScratch};

} // namespace vellor::nodes
