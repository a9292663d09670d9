#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"
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
    WarpMode mode = WarpMode::Gradient;
    float amount = 0.0f; // in picture widths
    float slopeX = 1.0f; // from a difference of pixels apart by two to a slope over the picture's width
    float directionX = 1.0f, directionY = 0.0f;
    float down = 1.0f; // from picture widths to picture heights
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/geometry/warp.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/sampling-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

using Window = RowWindow<1>;

struct Offset
{
    F x, y; // in shares of the picture's width and height
};

HWY_INLINE Offset offsetAt(const WarpState& state, const Window (&rows)[3], int i)
{
    if (state.mode == WarpMode::Direction) {
        const F length = loadAt(rows[1].at(i)) * F(state.amount);
        return {length * F(state.directionX), length * F(state.directionY * state.down)};
    }
    // Slopes weighted 3, 10, 3 are true under rotation (H. Scharr).
    const auto side = [&](int at) {
        return (loadAt(rows[0].at(at)) + loadAt(rows[2].at(at))) * F(3.0f / 16.0f) +
               loadAt(rows[1].at(at)) * F(10.0f / 16.0f);
    };
    const auto level = [&](const Window& row) {
        return (loadAt(row.at(i - 1)) + loadAt(row.at(i + 1))) * F(3.0f / 16.0f) +
               loadAt(row.at(i)) * F(10.0f / 16.0f);
    };
    const F scale(state.slopeX * state.amount);
    return {(side(i + 1) - side(i - 1)) * scale, (level(rows[2]) - level(rows[0])) * (scale * F(state.down))};
}

void warpChunk(const WarpState& state, const AreaJob& job, int x, int y, int count)
{
    Window rows[3];
    for (int r = 0; r < 3; ++r)
        rows[r].fill(job.operands[1], 0, x, y + r - 1, count);
    const ImageView& source = job.operands[0];
    const F v(centreOf(y, job.result.height));
    for (int i = 0; i < count; i += kLanes) {
        const Offset offset = offsetAt(state, rows, i);
        const BilinearTaps taps(source, centresFrom(x + i, job.result.width) + offset.x, v + offset.y);
        for (int c = 0; c < job.result.channels; ++c)
            store(taps.read(source.planes[c]), rowOf(job.result, c, y) + x + i);
    }
}

void warpArea(const AreaJob& job)
{
    const auto& state = static_cast<const WarpState&>(*job.state);
    for (int y = job.y0; y < job.y1; ++y)
        for (int x = 0; x < job.result.width; x += kChunk)
            warpChunk(state, job, x, y, std::min(kChunk, job.result.width - x));
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
    state->amount = held(p[0].f[0], -1000.0f, 1000.0f) * 0.01f;
    state->slopeX = 0.5f * static_cast<float>(setup.width);
    const scalar::SinCos turn = scalar::sinCosOfTurns(p[2].f[0]);
    state->directionX = turn.cosine;
    state->directionY = turn.sine;
    state->down = static_cast<float>(setup.width) / static_cast<float>(setup.height);
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
     {"angle", ParameterType::Float, {0.0}, 0, 1, "The direction, clockwise from the right in turns."}},
    prepareWarp,
    nullptr,
    runwarpArea};

} // namespace vellor::nodes
#endif
