#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

namespace vellor::nodes {
namespace {

struct StripesState : State
{
    float across = 8.0f, down = 0.0f;
    float width = 0.5f, shift = 0.0f;
    float blur = 0.01f; // length of the mean along the stripes' normal, in repeats
};

std::unique_ptr<State> prepareStripes(const Setup& setup)
{
    auto state = std::make_unique<StripesState>();
    const ParameterValue* p = setup.parameters;
    state->across = static_cast<float>(held(p[0].i[0], -4096, 4096));
    state->down = static_cast<float>(held(p[0].i[1], -4096, 4096));
    state->width = held(p[1].f[0], 0.0f, 1.0f);
    const float softness = held(p[2].f[0], 0.0f, 1.0f);
    state->shift = held(p[3].f[0], -1e3f, 1e3f);
    const float pixelX = state->across / static_cast<float>(setup.width);
    const float pixelY = state->down / static_cast<float>(setup.height);
    const float pixel = scalar::sqrtOf(pixelX * pixelX + pixelY * pixelY);
    state->blur = std::max(pixel + softness * std::min(state->width, 1.0f - state->width), 1e-4f);
    return state;
}

/// How much of 0 to x is white.
float whiteUpTo(float x, float width)
{
    const float whole = scalar::floorOf(x);
    return whole * width + std::min(x - whole, width);
}

void stripesRow(const RowJob& job)
{
    const auto& state = static_cast<const StripesState&>(*job.state);
    const float v = (static_cast<float>(job.y) + 0.5f) / static_cast<float>(job.height) * state.down;
    const float half = 0.5f * state.blur;
    for (int i = 0; i < job.count; ++i) {
        const float u = (static_cast<float>(job.x + i) + 0.5f) / static_cast<float>(job.width) * state.across;
        const float far = u + v - state.shift;
        const float at = far - scalar::floorOf(far); // small numbers stay exact
        const float share =
            (whiteUpTo(at + half, state.width) - whiteUpTo(at - half, state.width)) / state.blur;
        job.result[0][i] = held(share, 0.0f, 1.0f);
    }
}

} // namespace

const NodeDeclaration stripesNode{
    "stripes",
    "Stripes",
    "Sources",
    "Stripes along a direction that tiles. Edges are the exact mean over a pixel, however fine the stripes "
    "are.",
    ResultChannels::Grey,
    Chance::None,
    {},
    {{"repeats",
      ParameterType::Int2,
      {8, 0},
      -64,
      64,
      "Stripes from left to right and from top to bottom; both together run diagonally."},
     {"width", ParameterType::Float, {0.5}, 0, 1, "The share that is white."},
     {"softness",
      ParameterType::Float,
      {0.0},
      0,
      1,
      "Width of the soft edges; 1 spreads them over all of the narrower stripe."},
     {"shift", ParameterType::Float, {0.0}, -1, 1, "How far stripes are moved, in repeats."}},
    prepareStripes,
    stripesRow};

} // namespace vellor::nodes
