#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

namespace vellor::nodes {
namespace {

enum class RampProfile
{
    Saw,
    Triangle,
    Smooth,
    Sine
};

struct LinearGradientState : State
{
    float across = 1.0f, down = 0.0f;
    RampProfile profile = RampProfile::Saw;
    float pixel = 0.0f; // share of a repeat that one pixel covers
};

std::unique_ptr<State> prepareLinearGradient(const Setup& setup)
{
    auto state = std::make_unique<LinearGradientState>();
    state->across = static_cast<float>(held(setup.parameters[0].i[0], -4096, 4096));
    state->down = static_cast<float>(held(setup.parameters[0].i[1], -4096, 4096));
    state->profile = static_cast<RampProfile>(held(setup.parameters[1].i[0], 0, 3));
    state->pixel = std::max(scalar::absOf(state->across) / static_cast<float>(setup.width),
                            scalar::absOf(state->down) / static_cast<float>(setup.height));
    return state;
}

float rampAt(const LinearGradientState& state, float t)
{
    const float triangle = 1.0f - scalar::absOf(2.0f * t - 1.0f);
    switch (state.profile) {
    case RampProfile::Triangle:
        return triangle;
    case RampProfile::Smooth:
        return triangle * triangle * (3.0f - 2.0f * triangle);
    case RampProfile::Sine:
        return 0.5f - 0.5f * scalar::sinCosOfTurns(t).cosine;
    case RampProfile::Saw:
        break;
    }
    // The fall from 1 to 0 is smoothed over the pixel that it runs through.
    const float toFall = t < 0.5f ? t : t - 1.0f;
    const float part = state.pixel > 0.0f ? held(0.5f + toFall / state.pixel, 0.0f, 1.0f) : 1.0f;
    return toFall >= 0.0f ? t + (1.0f - part) * (1.0f - t) : t * (1.0f - part);
}

void linearGradientRow(const RowJob& job)
{
    const auto& state = static_cast<const LinearGradientState&>(*job.state);
    const float v = (static_cast<float>(job.y) + 0.5f) / static_cast<float>(job.height) * state.down;
    for (int i = 0; i < job.count; ++i) {
        const float u = (static_cast<float>(job.x + i) + 0.5f) / static_cast<float>(job.width) * state.across;
        const float position = u + v;
        job.result[0][i] = rampAt(state, position - scalar::floorOf(position));
    }
}

} // namespace

const NodeDeclaration lineargradientNode{
    "lineargradient",
    "Linear Gradient",
    "Sources",
    "Ramps along a direction that tiles: whole numbers of repeats across and down.",
    ResultChannels::Grey,
    Chance::None,
    {},
    {{"repeats",
      ParameterType::Int2,
      {1, 0},
      -64,
      64,
      "Ramps from left to right and from top to bottom; both together run diagonally, and below 0 the other "
      "way."},
     {"profile",
      ParameterType::Choice,
      {0},
      0,
      3,
      "saw rises and starts again; triangle rises and falls; smooth does so without corners; sine is a wave.",
      {"saw", "triangle", "smooth", "sine"}}},
    prepareLinearGradient,
    linearGradientRow};

} // namespace vellor::nodes
