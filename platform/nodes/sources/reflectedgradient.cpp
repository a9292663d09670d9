#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

namespace vellor::nodes {
namespace {

enum class SideProfile
{
    Linear,
    Smooth,
    Round,
    Bell
};

struct ReflectedGradientState : State
{
    float across = 1.0f, down = 0.0f;
    float position = 0.5f, inverseWidth = 1.0f; // of one side
    SideProfile profile = SideProfile::Linear;
};

std::unique_ptr<State> prepareReflectedGradient(const Setup& setup)
{
    auto state = std::make_unique<ReflectedGradientState>();
    const ParameterValue* p = setup.parameters;
    state->across = static_cast<float>(held(p[0].i[0], -4096, 4096));
    state->down = static_cast<float>(held(p[0].i[1], -4096, 4096));
    state->position = held(p[1].f[0], -1e3f, 1e3f);
    state->inverseWidth = 2.0f / held(p[2].f[0], 1e-4f, 1.0f);
    state->profile = static_cast<SideProfile>(held(p[3].i[0], 0, 3));
    return state;
}

float sideAt(SideProfile profile, float distance)
{
    const float t = held(1.0f - distance, 0.0f, 1.0f);
    const float square = held(1.0f - distance * distance, 0.0f, 1.0f);
    switch (profile) {
    case SideProfile::Smooth:
        return t * t * (3.0f - 2.0f * t);
    case SideProfile::Round:
        return scalar::sqrtOf(square);
    case SideProfile::Bell:
        return square * square * square;
    case SideProfile::Linear:
        break;
    }
    return t;
}

void reflectedGradientRow(const RowJob& job)
{
    const auto& state = static_cast<const ReflectedGradientState&>(*job.state);
    const float v = (static_cast<float>(job.y) + 0.5f) / static_cast<float>(job.height) * state.down;
    for (int i = 0; i < job.count; ++i) {
        const float u = (static_cast<float>(job.x + i) + 0.5f) / static_cast<float>(job.width) * state.across;
        const float offset = u + v - state.position;
        const float distance = scalar::absOf(offset - scalar::roundOf(offset));
        job.result[0][i] = sideAt(state.profile, distance * state.inverseWidth);
    }
}

} // namespace

const NodeDeclaration reflectedgradientNode{
    "reflectedgradient",
    "Reflected Gradient",
    "Sources",
    "White along a line, falling to black alike on both sides, in a direction that tiles.",
    ResultChannels::Grey,
    Chance::None,
    {},
    {{"repeats",
      ParameterType::Int2,
      {1, 0},
      -64,
      64,
      "Lines from left to right and from top to bottom; both together run diagonally."},
     {"position", ParameterType::Float, {0.5}, 0, 1, "Where the line lies, in repeats."},
     {"width", ParameterType::Float, {1.0}, 0, 1, "From black to black, in repeats."},
     {"profile",
      ParameterType::Choice,
      {0},
      0,
      3,
      "How the value falls.",
      {"linear", "smooth", "round", "bell"}}},
    prepareReflectedGradient,
    reflectedGradientRow};

} // namespace vellor::nodes
