#pragma once

#include "platform/nodes/node.h"
#include "platform/nodes/parameters.h"

#include <array>

namespace vellor::nodes {

/// Which colours count as near another: the parameters `tolerance`, `softness` and `comparison`, which follow
/// each other.
struct ColourKeyState : State
{
    ColourKeyState(const ParameterValue& colour, const ParameterValue* nearness)
        : key(colour.f), tolerance(held(nearness[0].f[0], 0.0f, 10.0f)),
          softness(held(nearness[1].f[0], 0.0f, 10.0f)), perceptual(nearness[2].i[0] == 0)
    {
    }

    std::array<float, 4> key;
    float tolerance, softness;
    bool perceptual;
};

} // namespace vellor::nodes
