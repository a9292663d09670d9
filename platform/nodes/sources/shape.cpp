#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"
#include "platform/nodes/shapes.h"

#ifndef VELLOR_SHAPE_STATE
#define VELLOR_SHAPE_STATE
namespace vellor::nodes {
namespace {

struct ShapeState : State
{
    ShapeOutline shape;
    float across = 1.0f, down = 1.0f;          // tiles
    float tileWidth = 1.0f, tileHeight = 1.0f; // in units of the shorter of the two
    float cosine = 1.0f, sine = 0.0f;
    float scaleX = 1.0f, scaleY = 1.0f; // from tile units to the shape's
    float pixel = 0.01f;                // in the shape's units
    int reach = 0;                      // tiles beyond the own one that a shape reaches into
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/sources/shape.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/shapes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void shapeRow(const RowJob& job)
{
    const auto& state = static_cast<const ShapeState&>(*job.state);
    const float v = centreOf(job.y, job.height) * state.down;
    const float localV = v - scalar::floorOf(v) - 0.5f;
    for (int i = 0; i < job.count; i += kLanes) {
        const F u = centresFrom(job.x + i, job.width) * F(state.across);
        const F localU = u - floorOf(u) - F(0.5f);
        F value(0.0f);
        for (int ty = -state.reach; ty <= state.reach; ++ty) {
            for (int tx = -state.reach; tx <= state.reach; ++tx) {
                const F x = (localU + F(static_cast<float>(tx))) * F(state.tileWidth);
                const F y((localV + static_cast<float>(ty)) * state.tileHeight);
                const F turnedX = x * F(state.cosine) + y * F(state.sine);
                const F turnedY = y * F(state.cosine) - x * F(state.sine);
                value = maxOf(value, shapeAt(state.shape, turnedX * F(state.scaleX),
                                             turnedY * F(state.scaleY), F(state.pixel)));
            }
        }
        store(value, job.result[0] + i);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(shapeRow)

static std::unique_ptr<State> prepareShape(const Setup& setup)
{
    auto state = std::make_unique<ShapeState>();
    const ParameterValue* p = setup.parameters;
    state->shape = makeShape(p[0].i[0], p[4].i[0], p[5].f[0], p[6].f[0]);
    const CellCount tiles = cellCount(p[1], setup);
    state->across = static_cast<float>(tiles.across);
    state->down = static_cast<float>(tiles.down);
    const float width = static_cast<float>(setup.width) / state->across; // in pixels
    const float height = static_cast<float>(setup.height) / state->down;
    const float shorter = std::min(width, height);
    state->tileWidth = width / shorter;
    state->tileHeight = height / shorter;
    const scalar::SinCos turn = scalar::sinCosOfTurns(p[3].f[0]);
    state->cosine = turn.cosine;
    state->sine = turn.sine;
    const float sizeX = held(p[2].f[0], 1e-4f, 4.0f), sizeY = held(p[2].f[1], 1e-4f, 4.0f);
    state->scaleX = 2.0f / sizeX;
    state->scaleY = 2.0f / sizeY;
    state->pixel = std::min(state->scaleX, state->scaleY) / shorter;
    const float radius = 0.5f * scalar::sqrtOf(sizeX * sizeX + sizeY * sizeY);
    const float room = 0.5f * std::min(state->tileWidth, state->tileHeight);
    while (state->reach < 3 && radius > room * static_cast<float>(1 + 2 * state->reach))
        ++state->reach;
    return state;
}

const NodeDeclaration shapeNode{
    "shape",
    "Shape",
    "Sources",
    "A shape, once or in even tiles, with an edge smoothed over one pixel or as soft as wanted.",
    ResultChannels::Grey,
    Chance::None,
    {},
    {{"shape",
      ParameterType::Choice,
      {0},
      0,
      9,
      "What is drawn; bell, hemisphere, cone and pyramid are reliefs.",
      VELLOR_SHAPE_CHOICES},
     {"tiles",
      ParameterType::Int2,
      {1, 0},
      1,
      64,
      "How many across and down; 0 down takes as many as keep tiles square."},
     {"size",
      ParameterType::Float2,
      {0.8, 0.8},
      0,
      2,
      "Width and height in shares of a tile's shorter side."},
     {"rotation", ParameterType::Float, {0.0}, -1, 1, "Turns the shape clockwise, in turns."},
     {"sides", ParameterType::Int, {6}, 3, 32, "Sides of the polygon, tips of the star."},
     {"ratio",
      ParameterType::Float,
      {0.4},
      0,
      1,
      "The box's corner radius, the star's inner radius, the ring's width or the capsule's radius, in shares "
      "of half the size."},
     {"softness", ParameterType::Float, {0.0}, 0, 1, "Width of the soft edge, in shares of half the size."}},
    prepareShape,
    runshapeRow};

} // namespace vellor::nodes
#endif
