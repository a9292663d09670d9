#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"
#include "platform/nodes/shapes.h"

#ifndef VELLOR_TILE_STATE
#define VELLOR_TILE_STATE
namespace vellor::nodes {
namespace {

enum class TileLayering
{
    Max,
    Add,
    Over
};

struct TileState : State
{
    ShapeOutline shape;
    int across = 1, down = 1;
    float tileWidth = 1.0f, tileHeight = 1.0f; // in units of the shorter of the two
    float offset = 0.0f;                       // of each row against the one above, in tiles
    float sizeX = 1.0f, sizeY = 1.0f;          // in those units
    float sizeVariation = 0.0f, positionVariation = 0.0f, rotation = 0.0f, rotationVariation = 0.0f;
    float valueVariation = 0.0f, share = 1.0f;
    float pixel = 0.01f;
    TileLayering layering = TileLayering::Max;
    int reach = 1;
    std::uint32_t seed = 0;
};

/// One tile's shape: where it lies and how pixels map to it.
struct PlacedShape
{
    bool drawn = false;
    float x = 0.0f, y = 0.0f; // centre, in tiles from the tile's corner
    float xx = 1.0f, xy = 0.0f, yx = 0.0f, yy = 1.0f;
    float pixel = 0.01f, value = 1.0f;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/patterns/tile.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/shapes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

/// The shape of tile (column, row), which go around.
PlacedShape placeShape(const TileState& state, int column, int row)
{
    PlacedShape placed;
    const auto x = static_cast<std::uint32_t>((column % state.across + state.across) % state.across);
    std::uint32_t hash = scalar::hashLattice(x, static_cast<std::uint32_t>(row), state.seed);
    const auto random = [&hash] { return scalar::unitOf(hash = scalar::nextHash(hash)); };
    placed.drawn = random() < state.share;
    placed.x = 0.5f + (random() - 0.5f) * state.positionVariation;
    placed.y = 0.5f + (random() - 0.5f) * state.positionVariation;
    const float size = 1.0f - random() * state.sizeVariation;
    const scalar::SinCos turn =
        scalar::sinCosOfTurns(state.rotation + (random() - 0.5f) * state.rotationVariation);
    placed.value = 1.0f - random() * state.valueVariation;
    const float scaleX = 2.0f / (state.sizeX * size), scaleY = 2.0f / (state.sizeY * size);
    placed.xx = turn.cosine * scaleX;
    placed.xy = turn.sine * scaleX;
    placed.yx = -turn.sine * scaleY;
    placed.yy = turn.cosine * scaleY;
    placed.pixel = state.pixel * std::min(scaleX, scaleY);
    return placed;
}

HWY_INLINE F layered(TileLayering layering, F below, F coverage, F value)
{
    switch (layering) {
    case TileLayering::Add:
        return below + coverage * value;
    case TileLayering::Over:
        return lerpOf(below, value, coverage);
    case TileLayering::Max:
        break;
    }
    return maxOf(below, coverage * value);
}

/// Draws the shapes of one row of tiles over a row of pixels that lies dy tiles below that row's upper edge.
void drawTiles(const TileState& state, const RowJob& job, int tileRow, float dy)
{
    const int row = (tileRow % state.down + state.down) % state.down;
    const float shift = state.offset * static_cast<float>(row);
    const float perPixel = static_cast<float>(state.across) / static_cast<float>(job.width);
    const auto positionOf = [&](int pixel) { return (static_cast<float>(pixel) + 0.5f) * perPixel + shift; };
    const int first = static_cast<int>(scalar::floorOf(positionOf(job.x))) - state.reach;
    const int last = static_cast<int>(scalar::floorOf(positionOf(job.x + job.count - 1))) + state.reach;
    for (int column = first; column <= last; ++column) {
        const PlacedShape placed = placeShape(state, column, row);
        if (!placed.drawn)
            continue;
        // Only pixels within reach of the tile.
        const float start =
            (static_cast<float>(column - state.reach) - shift) / perPixel - static_cast<float>(job.x);
        const float end = start + (1.0f + 2.0f * static_cast<float>(state.reach)) / perPixel;
        const int from = std::max(static_cast<int>(start) - 1, 0) / kLanes * kLanes;
        const int to = std::min(static_cast<int>(std::max(end, 0.0f)) + 2, job.count);
        const F y((dy - placed.y) * state.tileHeight);
        const F centre(static_cast<float>(column) + placed.x);
        for (int i = from; i < to; i += kLanes) {
            const F position = (countFrom(static_cast<float>(job.x + i)) + F(0.5f)) * F(perPixel) + F(shift);
            const F x = (position - centre) * F(state.tileWidth);
            const F coverage = shapeAt(state.shape, x * F(placed.xx) + y * F(placed.xy),
                                       x * F(placed.yx) + y * F(placed.yy), F(placed.pixel));
            store(layered(state.layering, load(job.result[0] + i), coverage, F(placed.value)),
                  job.result[0] + i);
        }
    }
}

void tileRow(const RowJob& job)
{
    const auto& state = static_cast<const TileState&>(*job.state);
    for (int i = 0; i < job.count; i += kLanes)
        store(F(0.0f), job.result[0] + i);
    const float down = centreOf(job.y, job.height) * static_cast<float>(state.down);
    const int row = static_cast<int>(down);
    for (int dy = -state.reach; dy <= state.reach; ++dy)
        drawTiles(state, job, row + dy, down - static_cast<float>(row + dy));
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(tileRow)

static std::unique_ptr<State> prepareTile(const Setup& setup)
{
    auto state = std::make_unique<TileState>();
    const ParameterValue* p = setup.parameters;
    state->shape = makeShape(p[0].i[0], p[1].i[0], p[2].f[0], p[3].f[0]);
    const CellCount count = cellCount(p[4], setup, 1024);
    state->across = count.across;
    state->down = count.down;
    const float width = static_cast<float>(setup.width) / static_cast<float>(count.across);
    const float height = static_cast<float>(setup.height) / static_cast<float>(count.down);
    const float shorter = std::min(width, height);
    state->tileWidth = width / shorter;
    state->tileHeight = height / shorter;
    state->pixel = 1.0f / shorter;
    state->sizeX = held(p[5].f[0], 1e-3f, 4.0f);
    state->sizeY = held(p[5].f[1], 1e-3f, 4.0f);
    state->sizeVariation = held(p[6].f[0], 0.0f, 0.99f);
    state->offset = held(p[7].f[0], -1.0f, 1.0f);
    state->positionVariation = held(p[8].f[0], 0.0f, 2.0f);
    state->rotation = p[9].f[0];
    state->rotationVariation = p[10].f[0];
    state->valueVariation = held(p[11].f[0], 0.0f, 1.0f);
    state->share = held(p[12].f[0], 0.0f, 1.0f);
    state->layering = static_cast<TileLayering>(held(p[13].i[0], 0, 2));
    const float radius = 0.5f * scalar::sqrtOf(state->sizeX * state->sizeX + state->sizeY * state->sizeY);
    const float room = 0.5f - 0.5f * state->positionVariation;
    state->reach = held(static_cast<int>(radius - room) + 1, 1, 4);
    state->seed = scalar::mixBits(static_cast<std::uint32_t>(setup.seed) + 0xa4093822u);
    return state;
}

const NodeDeclaration tileNode{
    "tile",
    "Tile",
    "Patterns",
    "Shapes on a grid, each of them moved, sized, turned and toned by chance: studs, pebbles, scales, "
    "scattered leaves.",
    ResultChannels::Grey,
    Chance::Seeded,
    {},
    {{"shape",
      ParameterType::Choice,
      {1},
      0,
      9,
      "What is drawn; bell, hemisphere, cone and pyramid are reliefs.",
      VELLOR_SHAPE_CHOICES},
     {"sides", ParameterType::Int, {6}, 3, 32, "Sides of the polygon, tips of the star."},
     {"ratio",
      ParameterType::Float,
      {0.1},
      0,
      1,
      "The box's corner radius, the star's inner radius, the ring's width or the capsule's radius, in shares "
      "of half the size."},
     {"softness", ParameterType::Float, {0.0}, 0, 1, "Width of the soft edge, in shares of half the size."},
     {"tiles",
      ParameterType::Int2,
      {8, 0},
      1,
      256,
      "How many across and down; 0 down takes as many as keep tiles square."},
     {"size",
      ParameterType::Float2,
      {0.8, 0.8},
      0,
      4,
      "Width and height in shares of a tile's shorter side."},
     {"sizevariation", ParameterType::Float, {0.0}, 0, 1, "How much smaller shapes are by chance."},
     {"offset",
      ParameterType::Float,
      {0.0},
      -1,
      1,
      "How far each row is shifted against the one above, in tiles."},
     {"positionvariation",
      ParameterType::Float,
      {0.0},
      0,
      2,
      "How far shapes are moved by chance, in tiles."},
     {"rotation", ParameterType::Float, {0.0}, -1, 1, "Turns all shapes clockwise, in turns."},
     {"rotationvariation",
      ParameterType::Float,
      {0.0},
      0,
      1,
      "How far shapes are turned by chance, in turns."},
     {"valuevariation", ParameterType::Float, {0.5}, 0, 1, "How much darker shapes are by chance."},
     {"share", ParameterType::Float, {1.0}, 0, 1, "The share of tiles that have a shape."},
     {"layering",
      ParameterType::Choice,
      {0},
      0,
      2,
      "Where shapes overlap: the lighter shows, they add up, or the lower right one covers the others.",
      {"max", "add", "over"}}},
    prepareTile,
    runtileRow};

} // namespace vellor::nodes
#endif
