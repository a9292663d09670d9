#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/resampling.h"
#include "platform/nodes/scalar.h"

#ifndef VELLOR_WARP_STATE
#define VELLOR_WARP_STATE
namespace vellor::nodes {
namespace {

enum class WarpMode
{
    Gradient,
    Direction
};

struct WarpState : State
{
    Reading reading;
    WarpMode mode = WarpMode::Gradient;
    float reach = 0.0f;              // in pixels, of a difference of 1 between pixels apart by two
    float right = 0.0f, down = 0.0f; // in one direction: in pixels, of a height of 1
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/geometry/warp.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/resampling-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void warpAlongSlopes(const WarpState& state, const AreaJob& job)
{
    Window<1> heights;
    const F reach(state.reach);
    displace(
        job, job.operands[0], state.reading,
        [&](const Tile& tile) {
            heights.fill(job.operands[1], 0, Edges::Repeat,
                         {tile.x - 1, tile.y - 1, tile.x + tile.width + 1, tile.y + tile.height + 1});
        },
        [&](const Tile& tile, int i, int row) {
            fetchForNextTile(rowOf(job.operands[1], 0, tile.y + row) + tile.x + i);
            const auto at = [&](int dx, int dy) {
                return loadAt(heights.at(tile.x + i + dx, tile.y + row + dy));
            };
            // Slopes weighted 3, 10, 3 are true under rotation (H. Scharr).
            const auto side = [&](int x) {
                return (at(x, -1) + at(x, 1)) * F(3.0f / 16.0f) + at(x, 0) * F(10.0f / 16.0f);
            };
            const auto level = [&](int y) {
                return (at(-1, y) + at(1, y)) * F(3.0f / 16.0f) + at(0, y) * F(10.0f / 16.0f);
            };
            return Spot{(side(1) - side(-1)) * reach, (level(1) - level(-1)) * reach};
        });
}

void warpArea(const AreaJob& job)
{
    const auto& state = static_cast<const WarpState&>(*job.state);
    if (state.mode == WarpMode::Gradient)
        return warpAlongSlopes(state, job);
    displace(
        job, job.operands[0], state.reading, [](const Tile&) {},
        [&](const Tile& tile, int i, int row) {
            const F length = loadOfMap(rowOf(job.operands[1], 0, tile.y + row) + tile.x + i);
            return Spot{length * F(state.right), length * F(state.down)};
        });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(warpArea)

static std::unique_ptr<State> prepareWarp(const Setup& setup)
{
    auto state = std::make_unique<WarpState>();
    const ParameterValue* p = setup.parameters;
    state->mode = static_cast<WarpMode>(held(p[1].i[0], 0, 1));
    const float width = static_cast<float>(setup.width);
    const float amount = held(p[0].f[0], -1000.0f, 1000.0f) * 0.01f * width;
    const scalar::SinCos turn = scalar::sinCosOfTurns(held(p[2].f[0], -1e4f, 1e4f));
    state->reach = amount * 0.5f * width;
    state->right = turn.cosine * amount;
    state->down = turn.sine * amount;
    state->reading.filter = static_cast<PixelFilter>(held(p[3].i[0], 0, 2));
    return state;
}

const NodeDeclaration warpNode{
    "warp",
    "Warp",
    "Geometry",
    "Pulls a picture along the slopes of a height map, or in one direction as far as the height map is high. "
    "Wraps around.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to warp."},
     {"height", OperandChannels::Grey, true, "The height map."}},
    {{"intensity",
      ParameterType::Float,
      {0.3},
      -20,
      20,
      "How far pixels come from, in hundredths of the picture's width: times the slope, which is 1 where the "
      "height goes from "
      "black to white over a whole width; or, in one direction, times the height."},
     {"mode", ParameterType::Choice, {0}, 0, 1, "Where pixels come from.", {"gradient", "direction"}},
     {"angle", ParameterType::Float, {0.0}, 0, 1, "The direction, clockwise from the right in turns."},
     filterParameter()},
    prepareWarp,
    nullptr,
    runwarpArea};

} // namespace vellor::nodes
#endif
