#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

namespace vellor::nodes {
namespace {

struct CheckerState : State
{
    float across = 4.0f, down = 4.0f; // pairs of squares
    float sharpness = 1.0f;           // pixels that one repeat of the squares takes
    bool diagonal = false;
};

std::unique_ptr<State> prepareChecker(const Setup& setup)
{
    auto state = std::make_unique<CheckerState>();
    const CellCount count = cellCount(setup.parameters[0], setup);
    state->across = static_cast<float>(count.across);
    state->down = static_cast<float>(count.down);
    state->diagonal = setup.parameters[1].i[0] != 0;
    const float side = std::min(static_cast<float>(setup.width) / state->across,
                                static_cast<float>(setup.height) / state->down);
    // Turned squares have sides shorter by the square root of 2.
    state->sharpness = state->diagonal ? side * 0.70710678f : side;
    return state;
}

/// 1 in the first half of each whole step of position and -1 in the second, with a ramp of one pixel between.
float squareWave(float position, float sharpness)
{
    const float turned = position - scalar::floorOf(position);
    const float toEdge = 0.25f - scalar::absOf(turned - 0.25f); // 0 at the start of the upper half
    const float lower = scalar::absOf(turned - 0.75f) - 0.25f;  // negative within the lower half
    return held(2.0f * (turned <= 0.5f ? toEdge : lower) * sharpness, -1.0f, 1.0f);
}

void checkerRow(const RowJob& job)
{
    const auto& state = static_cast<const CheckerState&>(*job.state);
    const float v = (static_cast<float>(job.y) + 0.5f) / static_cast<float>(job.height) * state.down;
    for (int i = 0; i < job.count; ++i) {
        const float u = (static_cast<float>(job.x + i) + 0.5f) / static_cast<float>(job.width) * state.across;
        const float a = squareWave(state.diagonal ? u + v : u, state.sharpness);
        const float b = squareWave(state.diagonal ? u - v : v, state.sharpness);
        job.result[0][i] = 0.5f + 0.5f * a * b;
    }
}

} // namespace

const NodeDeclaration checkerNode{
    "checker",
    "Checker",
    "Sources",
    "Squares in two tones, with edges smoothed over one pixel.",
    ResultChannels::Grey,
    Chance::None,
    {},
    {{"tiles",
      ParameterType::Int2,
      {4, 0},
      1,
      128,
      "How many times the pattern of two by two squares repeats across and down; 0 down keeps it square."},
     {"diagonal", ParameterType::Bool, {0}, 0, 1, "Turns the squares by an eighth of a turn."}},
    prepareChecker,
    checkerRow};

} // namespace vellor::nodes
