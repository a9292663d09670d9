#pragma once

// Blocks that lie side by side in a bed of mortar: what the kinds brick, hexagons, herringbone and
// basketweave have in common. A kind finds the block under a place; the relief, the masks and the random
// values follow from here, and fit each other for equal parameters.

#include "platform/nodes/node.h"

#include <vector>

namespace vellor::nodes {

enum class BlockOutput
{
    Height,
    Mask,
    Value,
    U,
    V,
    Slope,
    Edge,
    Direction // of kinds whose blocks lie in two directions
};

/// Lengths are shares of a length that the kind names.
struct BlockState : State
{
    BlockOutput output = BlockOutput::Height;
    float mortar = 0.1f, bevel = 0.1f, rounding = 0.05f;
    float heightVariation = 0.0f, tilt = 0.0f;
    float pixel = 0.01f; // a pixel's width
    std::uint32_t seed = 0;

    /// From the parameters that blockParameters() adds.
    void read(const ParameterValue* parameters, const Setup& setup);
};

/// own, then mortar, bevel, rounding, heightvariation, tilt and output.
std::vector<ParameterDeclaration> blockParameters(std::vector<ParameterDeclaration> own,
                                                  bool twoDirections = false);

} // namespace vellor::nodes
