#pragma once

// What unrolling rings and rolling them up share: the circle and the direction where both begin.

#include "platform/nodes/parameters.h"
#include "platform/nodes/resampling.h"

namespace vellor::nodes {

struct PolarState : State
{
    Reading reading;
    float radius = 1.0f, turn = 0.0f; // in pixels, in turns
    float x = 0.0f, y = 0.0f;         // the centre, in pixels
};

inline std::unique_ptr<State> preparePolar(const Setup& setup)
{
    auto state = std::make_unique<PolarState>();
    const ParameterValue* p = setup.parameters;
    state->radius = held(p[0].f[0], 1e-4f, 16.0f) * static_cast<float>(setup.width);
    state->turn = held(p[1].f[0], -1e4f, 1e4f);
    state->x = held(p[2].f[0], -16.0f, 16.0f) * static_cast<float>(setup.width) - 0.5f;
    state->y = held(p[2].f[1], -16.0f, 16.0f) * static_cast<float>(setup.height) - 0.5f;
    state->reading.filter = static_cast<PixelFilter>(held(p[3].i[0], 0, 2));
    return state;
}

inline std::vector<ParameterDeclaration> polarParameters()
{
    return {{"radius",
             ParameterType::Float,
             {0.5},
             0,
             1,
             "The radius of the lowest row, in shares of the picture's width."},
            {"rotation",
             ParameterType::Float,
             {0.0},
             -1,
             1,
             "The angle of the left edge, clockwise from the right in turns."},
            {"centre", ParameterType::Float2, {0.5, 0.5}, 0, 1, "The centre, in shares of width and height."},
            filterParameter()};
}

} // namespace vellor::nodes
