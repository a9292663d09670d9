#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/resampling.h"
#include "platform/nodes/scalar.h"

#ifndef VELLOR_MULTIDIRECTIONALWARP_STATE
#define VELLOR_MULTIDIRECTIONALWARP_STATE
namespace vellor::nodes {
namespace {

constexpr int kMostDirections = 8;

enum class WarpCombination
{
    Average,
    Minimum,
    Maximum
};

struct MultidirectionalWarpState : State
{
    Reading reading;
    WarpCombination combination = WarpCombination::Average;
    int directions = 1;
    std::array<float, kMostDirections> right{}, down{}; // in pixels, of a value of 1
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/geometry/multidirectionalwarp.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/resampling-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

HWY_INLINE F combined(WarpCombination how, F sofar, F value)
{
    switch (how) {
    case WarpCombination::Minimum:
        return minOf(sofar, value);
    case WarpCombination::Maximum:
        return maxOf(sofar, value);
    default:
        return sofar + value;
    }
}

void multidirectionalWarpArea(const AreaJob& job)
{
    const auto& state = static_cast<const MultidirectionalWarpState&>(*job.state);
    TileReader reader(job.operands[0], state.reading);
    forEachTile(job, [&](Tile& tile) {
        for (int d = 0; d < state.directions; ++d) {
            tile.locate([&](int i, int row) {
                const F length = loadOfMap(rowOf(job.operands[1], 0, tile.y + row) + tile.x + i);
                return Spot{countFrom(static_cast<float>(i)) + length * F(state.right[d]),
                            length * F(state.down[d])};
            });
            const bool last = d == state.directions - 1 && state.combination == WarpCombination::Average;
            const F share(last ? 1.0f / static_cast<float>(state.directions) : 1.0f);
            reader.read(tile, [&](int c, int i, int row, F value) {
                float* to = rowOf(job.result, c, tile.y + row) + tile.x + i;
                store((d == 0 ? value : combined(state.combination, load(to), value)) * share, to);
            });
        }
    });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(multidirectionalWarpArea)

static std::unique_ptr<State> prepareMultidirectionalWarp(const Setup& setup)
{
    auto state = std::make_unique<MultidirectionalWarpState>();
    const ParameterValue* p = setup.parameters;
    const float reach = held(p[0].f[0], -1000.0f, 1000.0f) * 0.01f * static_cast<float>(setup.width);
    state->directions = held(p[2].i[0], 1, kMostDirections);
    for (int d = 0; d < state->directions; ++d) {
        const float part = static_cast<float>(d) / static_cast<float>(state->directions);
        const scalar::SinCos turn = scalar::sinCosOfTurns(held(p[1].f[0], -1e4f, 1e4f) + part);
        state->right[d] = -turn.cosine * reach;
        state->down[d] = -turn.sine * reach;
    }
    state->combination = static_cast<WarpCombination>(held(p[3].i[0], 0, 2));
    state->reading.filter = static_cast<PixelFilter>(held(p[4].i[0], 0, 2));
    return state;
}

const NodeDeclaration multidirectionalwarpNode{
    "multidirectionalwarp",
    "Multi-directional Warp",
    "Geometry",
    "Moves a picture in several directions, each place as far as a map says, and combines what comes there. "
    "The minimum wears edges away, the maximum lets them grow. Wraps around.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to warp."},
     {"map", OperandChannels::Grey, true, "How far each place moves."}},
    {{"intensity",
      ParameterType::Float,
      {5.0},
      -50,
      50,
      "How far a value of 1 moves, in hundredths of the picture's width."},
     {"angle",
      ParameterType::Float,
      {0.0},
      0,
      1,
      "The first direction, clockwise from the right in turns; the others are spread evenly."},
     {"directions", ParameterType::Int, {4}, 1, 8, "How many directions there are."},
     {"mode",
      ParameterType::Choice,
      {0},
      0,
      2,
      "What is taken of the directions' values.",
      {"average", "minimum", "maximum"}},
     filterParameter()},
    prepareMultidirectionalWarp,
    nullptr,
    runmultidirectionalWarpArea};

} // namespace vellor::nodes
#endif
