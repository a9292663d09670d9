#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

namespace vellor::nodes {
namespace {

enum class RadialProfile
{
    Linear,
    Smooth,
    Sphere,
    Bell
};

struct RadialGradientState : State
{
    float centreX = 0.5f, centreY = 0.5f;
    float down = 1.0f; // the picture's height by its width
    float inverseRadius = 2.0f;
    RadialProfile profile = RadialProfile::Linear;
};

std::unique_ptr<State> prepareRadialGradient(const Setup& setup)
{
    auto state = std::make_unique<RadialGradientState>();
    const ParameterValue* p = setup.parameters;
    state->centreX = p[0].f[0];
    state->centreY = p[0].f[1];
    state->down = static_cast<float>(setup.height) / static_cast<float>(setup.width);
    state->inverseRadius = 1.0f / held(p[1].f[0], 1e-5f, 10.0f);
    state->profile = static_cast<RadialProfile>(held(p[2].i[0], 0, 3));
    return state;
}

float profileAt(RadialProfile profile, float distance)
{
    const float t = held(1.0f - distance, 0.0f, 1.0f);
    const float square = held(1.0f - distance * distance, 0.0f, 1.0f);
    switch (profile) {
    case RadialProfile::Smooth:
        return t * t * (3.0f - 2.0f * t);
    case RadialProfile::Sphere:
        return scalar::sqrtOf(square);
    case RadialProfile::Bell:
        return square * square * square;
    case RadialProfile::Linear:
        break;
    }
    return t;
}

void radialGradientRow(const RowJob& job)
{
    const auto& state = static_cast<const RadialGradientState&>(*job.state);
    const float offsetV = (static_cast<float>(job.y) + 0.5f) / static_cast<float>(job.height) - state.centreY;
    const float dy = (offsetV - scalar::roundOf(offsetV)) * state.down;
    for (int i = 0; i < job.count; ++i) {
        const float offsetU =
            (static_cast<float>(job.x + i) + 0.5f) / static_cast<float>(job.width) - state.centreX;
        const float dx = offsetU - scalar::roundOf(offsetU); // to the nearest of the repeated centres
        job.result[0][i] = profileAt(state.profile, scalar::sqrtOf(dx * dx + dy * dy) * state.inverseRadius);
    }
}

} // namespace

const NodeDeclaration radialgradientNode{
    "radialgradient",
    "Radial Gradient",
    "Sources",
    "White in a centre, falling to black at a radius. Wraps around.",
    ResultChannels::Grey,
    Chance::None,
    {},
    {{"centre",
      ParameterType::Float2,
      {0.5, 0.5},
      0,
      1,
      "The centre, in shares of the picture's width and height."},
     {"radius", ParameterType::Float, {0.5}, 0, 1, "Where black starts, in shares of the picture's width."},
     {"profile",
      ParameterType::Choice,
      {0},
      0,
      3,
      "How the value falls.",
      {"linear", "smooth", "sphere", "bell"}}},
    prepareRadialGradient,
    radialGradientRow};

} // namespace vellor::nodes
