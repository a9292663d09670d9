#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

namespace vellor::nodes {
namespace {

enum class DotProfile
{
    Disc,
    Cone,
    Hemisphere,
    Bell
};

// Lengths are shares of a cell's shorter side.
struct DotsState : State
{
    float across = 8.0f, down = 8.0f;
    float cellX = 1.0f, cellY = 1.0f;
    float radius = 0.3f, softness = 0.0f, pixel = 0.1f;
    bool staggered = false;
    DotProfile profile = DotProfile::Disc;
};

std::unique_ptr<State> prepareDots(const Setup& setup)
{
    auto state = std::make_unique<DotsState>();
    const ParameterValue* p = setup.parameters;
    const CellCount count = cellCount(p[0], setup);
    state->staggered = p[1].i[0] == 1;
    state->across = static_cast<float>(count.across);
    state->down = static_cast<float>(state->staggered ? (count.down + 1) / 2 * 2 : count.down);
    const float width = static_cast<float>(setup.width) / state->across;
    const float height = static_cast<float>(setup.height) / state->down;
    const float shorter = std::min(width, height);
    state->cellX = width / shorter;
    state->cellY = height / shorter;
    state->pixel = 1.0f / shorter;
    state->radius = 0.5f * held(p[2].f[0], 0.0f, 1.5f);
    state->softness = held(p[3].f[0], 0.0f, 1.0f) * state->radius;
    state->profile = static_cast<DotProfile>(held(p[4].i[0], 0, 3));
    return state;
}

/// The square of the distance from the nearest of the dots in three rows.
float squareAt(const DotsState& state, float x, float y)
{
    const float row = scalar::floorOf(y);
    float best = 1e9f;
    for (int step = -1; step <= 1; ++step) {
        const float at = row + static_cast<float>(step);
        const bool odd = at - 2.0f * scalar::floorOf(at * 0.5f) > 0.5f;
        const float moved = x - 0.5f - (state.staggered && odd ? 0.5f : 0.0f);
        const float dx = (moved - scalar::roundOf(moved)) * state.cellX;
        const float dy = (y - at - 0.5f) * state.cellY;
        best = std::min(best, dx * dx + dy * dy);
    }
    return best;
}

float dotAt(const DotsState& state, float square)
{
    const float radius = std::max(state.radius, 1e-6f);
    const float hill = held(1.0f - square / (radius * radius), 0.0f, 1.0f);
    switch (state.profile) {
    case DotProfile::Cone:
        return held(1.0f - scalar::sqrtOf(square) / radius, 0.0f, 1.0f);
    case DotProfile::Hemisphere:
        return scalar::sqrtOf(hill);
    case DotProfile::Bell:
        return hill * hill * hill;
    case DotProfile::Disc:
        break;
    }
    const float inside = state.radius - scalar::sqrtOf(square);
    const float t = held((inside + 0.5f * state.pixel) / (state.softness + state.pixel), 0.0f, 1.0f);
    // What is smaller than a pixel covers no more than its area.
    const float area =
        std::min(scalar::kPi * state.radius * state.radius / (state.pixel * state.pixel), 1.0f);
    return (state.softness > 0.0f ? t * t * (3.0f - 2.0f * t) : t) * area;
}

void dotsRow(const RowJob& job)
{
    const auto& state = static_cast<const DotsState&>(*job.state);
    const float y = (static_cast<float>(job.y) + 0.5f) / static_cast<float>(job.height) * state.down;
    for (int i = 0; i < job.count; ++i) {
        const float x = (static_cast<float>(job.x + i) + 0.5f) / static_cast<float>(job.width) * state.across;
        job.result[0][i] = dotAt(state, squareAt(state, x, y));
    }
}

} // namespace

const NodeDeclaration dotsNode{
    "dots",
    "Dots",
    "Sources",
    "Round dots on a grid, with edges smoothed over one pixel or as soft as wanted.",
    ResultChannels::Grey,
    Chance::None,
    {},
    {{"tiles",
      ParameterType::Int2,
      {8, 0},
      1,
      256,
      "How many across and down; 0 down takes as many as keep them evenly apart, and staggered rows are "
      "taken up to "
      "an even number."},
     {"arrangement",
      ParameterType::Choice,
      {0},
      0,
      1,
      "Whether rows stand below each other or every other one is moved by a half.",
      {"square", "staggered"}},
     {"size", ParameterType::Float, {0.6}, 0, 1.5, "A dot's diameter in shares of a tile's shorter side."},
     {"softness", ParameterType::Float, {0.0}, 0, 1, "Width of a disc's soft edge in shares of its radius."},
     {"profile",
      ParameterType::Choice,
      {0},
      0,
      3,
      "Flat discs, or a relief.",
      {"disc", "cone", "hemisphere", "bell"}}},
    prepareDots,
    dotsRow};

} // namespace vellor::nodes
