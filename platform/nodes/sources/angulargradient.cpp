#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

namespace vellor::nodes {
namespace {

enum class TurnProfile
{
    Saw,
    Triangle,
    Sine
};

struct AngularGradientState : State
{
    float centreX = 0.5f, centreY = 0.5f;
    float down = 1.0f;  // the picture's height by its width
    float start = 0.0f; // turns
    float repeats = 1.0f;
    float pixel = 0.01f; // share of the picture's width
    TurnProfile profile = TurnProfile::Saw;
};

std::unique_ptr<State> prepareAngularGradient(const Setup& setup)
{
    auto state = std::make_unique<AngularGradientState>();
    const ParameterValue* p = setup.parameters;
    state->centreX = held(p[0].f[0], -1e3f, 1e3f);
    state->centreY = held(p[0].f[1], -1e3f, 1e3f);
    state->down = static_cast<float>(setup.height) / static_cast<float>(setup.width);
    state->start = held(p[1].f[0], -1e3f, 1e3f);
    state->repeats = static_cast<float>(held(p[2].i[0], 1, 1024));
    state->profile = static_cast<TurnProfile>(held(p[3].i[0], 0, 2));
    state->pixel = 1.0f / static_cast<float>(setup.width);
    return state;
}

float turnAt(const AngularGradientState& state, float dx, float dy)
{
    const float turns = (scalar::atan2Of(dy, dx) * (0.5f / scalar::kPi) - state.start) * state.repeats;
    const float t = turns - scalar::floorOf(turns);
    if (state.profile == TurnProfile::Triangle)
        return 1.0f - scalar::absOf(2.0f * t - 1.0f);
    if (state.profile == TurnProfile::Sine)
        return 0.5f - 0.5f * scalar::sinCosOfTurns(t).cosine;
    // The fall from 1 to 0 is smoothed over the pixel that it runs through: as wide as it is close to the
    // centre.
    const float circle = 2.0f * scalar::kPi * scalar::sqrtOf(dx * dx + dy * dy);
    const float pixel = std::min(state.pixel * state.repeats / std::max(circle, 1e-9f), 1.0f);
    const float toFall = t < 0.5f ? t : t - 1.0f;
    const float part = held(0.5f + toFall / pixel, 0.0f, 1.0f);
    return toFall >= 0.0f ? t + (1.0f - part) * (1.0f - t) : t * (1.0f - part);
}

void angularGradientRow(const RowJob& job)
{
    const auto& state = static_cast<const AngularGradientState&>(*job.state);
    const float offsetV = (static_cast<float>(job.y) + 0.5f) / static_cast<float>(job.height) - state.centreY;
    const float dy = (offsetV - scalar::roundOf(offsetV)) * state.down;
    for (int i = 0; i < job.count; ++i) {
        const float offsetU =
            (static_cast<float>(job.x + i) + 0.5f) / static_cast<float>(job.width) - state.centreX;
        job.result[0][i] = turnAt(state, offsetU - scalar::roundOf(offsetU), dy);
    }
}

} // namespace

const NodeDeclaration angulargradientNode{
    "angulargradient",
    "Angular Gradient",
    "Sources",
    "Rises with the angle around a centre. Repeats with the picture; triangles and waves that repeat an even "
    "number "
    "of times go on across its edges without a step.",
    ResultChannels::Grey,
    Chance::None,
    {},
    {{"centre",
      ParameterType::Float2,
      {0.5, 0.5},
      0,
      1,
      "The centre, in shares of the picture's width and height."},
     {"start", ParameterType::Float, {0.0}, 0, 1, "Where black starts, clockwise from the right in turns."},
     {"repeats", ParameterType::Int, {1}, 1, 64, "Ramps in a turn."},
     {"profile",
      ParameterType::Choice,
      {0},
      0,
      2,
      "saw rises and starts again; triangle rises and falls; sine is a wave.",
      {"saw", "triangle", "sine"}}},
    prepareAngularGradient,
    angularGradientRow};

} // namespace vellor::nodes
