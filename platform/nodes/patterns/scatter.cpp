#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/patterns/bond.h"
#include "platform/nodes/patterns/stamps.h"
#include "platform/nodes/scalar.h"

namespace vellor::nodes {
namespace {

enum Parameter
{
    kTiles,
    kOffset,
    kPositionVariation,
    kCount
};

std::unique_ptr<State> prepareScatter(const Setup& setup)
{
    const ParameterValue* p = setup.parameters;
    const CellCount count = cellCount(p[kTiles], setup, 512);
    const float width = static_cast<float>(setup.width) / static_cast<float>(count.across);
    const float height = static_cast<float>(setup.height) / static_cast<float>(count.down);
    StampMaker maker(setup, p + kCount, std::min(width, height), width, height,
                     static_cast<float>(count.down), static_cast<float>(count.across));
    const float offset = bondOffset(held(p[kOffset].f[0], -1.0f, 1.0f), count.down);
    const float variation = held(p[kPositionVariation].f[0], 0.0f, 2.0f);
    const std::uint32_t seed = scalar::mixBits(static_cast<std::uint32_t>(setup.seed) + 0x5ca77e12u);
    for (int row = 0; row < count.down; ++row) {
        for (int column = 0; column < count.across; ++column) {
            std::uint32_t hash = scalar::hashLattice(static_cast<std::uint32_t>(column),
                                                     static_cast<std::uint32_t>(row), seed);
            const std::uint32_t across = scalar::nextHash(hash), down = scalar::nextHash(across);
            const float x = static_cast<float>(column) + 0.5f - offset * static_cast<float>(row) +
                            (scalar::unitOf(across) - 0.5f) * variation;
            const float y = static_cast<float>(row) + 0.5f + (scalar::unitOf(down) - 0.5f) * variation;
            maker.add(x * width, y * height, static_cast<float>(row), x, scalar::nextHash(down));
        }
    }
    return maker.finish();
}

} // namespace

const NodeDeclaration scatterNode{
    "scatter",
    "Scatter",
    "Patterns",
    "Stamps pictures, or a shape, on a grid, each moved, sized, turned, toned, coloured, dropped and layered "
    "by "
    "chance and by maps. Stamps are read from halved pictures that fit their size, so that small ones are "
    "smooth.",
    ResultChannels::FromOperands,
    Chance::Seeded,
    stampOperands(),
    stampParameters(
        {{"tiles",
          ParameterType::Int2,
          {8, 0},
          1,
          256,
          "How many across and down; 0 down takes as many as keep tiles square."},
         {"offset",
          ParameterType::Float,
          {0.0},
          -1,
          1,
          "How far each row is shifted against the one above, in tiles; taken to the nearest shift that "
          "goes on across the picture's edge."},
         {"positionvariation",
          ParameterType::Float,
          {0.0},
          0,
          2,
          "How far stamps are moved by chance, in tiles."}}),
    prepareScatter,
    nullptr,
    runStamps,
    stampScratch};

} // namespace vellor::nodes
