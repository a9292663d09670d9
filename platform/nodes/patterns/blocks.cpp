#include "platform/nodes/patterns/blocks.h"

#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

namespace vellor::nodes {

void BlockState::read(const ParameterValue* p, const Setup& setup)
{
    mortar = held(p[0].f[0], 0.0f, 1.0f);
    bevel = held(p[1].f[0], 0.0f, 1.0f);
    rounding = held(p[2].f[0], 0.0f, 1.0f);
    heightVariation = held(p[3].f[0], 0.0f, 1.0f);
    tilt = held(p[4].f[0], 0.0f, 1.0f);
    output = static_cast<BlockOutput>(held(p[5].i[0], 0, static_cast<int>(BlockOutput::Direction)));
    seed = scalar::mixBits(static_cast<std::uint32_t>(setup.seed) + 0xb7e15163u);
}

std::vector<ParameterDeclaration> blockParameters(std::vector<ParameterDeclaration> own, bool twoDirections)
{
    using T = ParameterType;
    const std::vector<ParameterDeclaration> common = {
        {"mortar", T::Float, {0.08}, 0, 1, "Width of the joints."},
        {"bevel", T::Float, {0.08}, 0, 1, "Width of the slope from a block's edge to its face."},
        {"rounding", T::Float, {0.06}, 0, 0.5, "Radius of the corners."},
        {"heightvariation",
         T::Float,
         {0.2},
         0,
         1,
         "How much lower blocks lie by chance; changes the height output."},
        {"tilt", T::Float, {0.1}, 0, 1, "How much faces are tilted by chance; changes the height output."},
    };
    own.insert(own.end(), common.begin(), common.end());
    ParameterDeclaration output{"output",
                                T::Choice,
                                {0},
                                0,
                                6,
                                "What to draw: height is the relief; mask is white on blocks; value is a "
                                "random grey for each block; u and v "
                                "are the position within a block, u along it; slope is a random gradient for "
                                "each block; edge is the distance "
                                "from the edge.",
                                {"height", "mask", "value", "u", "v", "slope", "edge"}};
    if (twoDirections) {
        output.text = "What to draw: height is the relief; mask is white on blocks; value is a random grey "
                      "for each block; u "
                      "and v are the position within a block, u along it; slope is a random gradient for "
                      "each block; edge is "
                      "the distance from the edge; direction is white for blocks that lie the second way.";
        output.choices.push_back("direction");
        output.maximum = 7;
    }
    own.push_back(output);
    return own;
}

} // namespace vellor::nodes
