#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/scalar.h"

#ifndef VELLOR_BRICK_STATE
#define VELLOR_BRICK_STATE
namespace vellor::nodes {
namespace {

enum class BrickOutput
{
    Height,
    Mask,
    Value,
    GradientU,
    GradientV,
    Slope,
    Edge
};

// Lengths are shares of a brick's height, so that edges are as wide across as down.
struct BrickState : State
{
    BrickOutput output = BrickOutput::Height;
    float columns = 4.0f, rows = 8.0f;
    float aspect = 2.0f; // a brick's width by its height
    float offset = 0.5f, offsetVariation = 0.0f;
    float mortar = 0.1f, bevel = 0.1f, rounding = 0.05f;
    float heightVariation = 0.0f, tilt = 0.0f;
    float pixel = 0.01f; // a pixel's width
    std::uint32_t seed = 0;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/patterns/brick.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

/// The brick under some points.
struct Bricks
{
    F u, v;   // position within the brick's cell, 0 to 1
    F inside; // distance from the brick's edge, positive inside
    U hash;
};

HWY_INLINE Bricks bricksAt(const BrickState& state, F x, float y)
{
    const float down = y * state.rows;
    const float row = scalar::floorOf(down);
    const auto rowIndex = static_cast<std::uint32_t>(
        static_cast<std::int32_t>(row - state.rows * scalar::floorOf(row / state.rows)));
    const float random = scalar::unitOf(scalar::hashLattice(rowIndex, 0x51u, state.seed)) - 0.5f;
    const float offset = state.offset * static_cast<float>(rowIndex) + state.offsetVariation * random;
    const F across = x * F(state.columns) + F(offset);
    const F column = floorOf(across);
    const F wrappedColumn = column - F(state.columns) * floorOf(column / F(state.columns));
    Bricks result;
    result.u = across - column;
    result.v = F(down - row);
    result.hash = hashLattice(toInteger(wrappedColumn), U(rowIndex), U(state.seed));
    // Signed distance of a box with rounded corners.
    const F halfX(0.5f * (state.aspect - state.mortar)), halfY(0.5f * (1.0f - state.mortar));
    const F radius = minOf(F(state.rounding), minOf(halfX, halfY));
    const F qx = absOf(result.u - F(0.5f)) * F(state.aspect) - halfX + radius;
    const F qy = absOf(result.v - F(0.5f)) - halfY + radius;
    const F ox = maxOf(qx, F(0.0f)), oy = maxOf(qy, F(0.0f));
    result.inside = radius - sqrtOf(ox * ox + oy * oy) - minOf(maxOf(qx, qy), F(0.0f));
    return result;
}

/// -1 to 1, evenly spread, from a brick's hash.
HWY_INLINE F signedOf(U hash)
{
    return unitOf(hash) * F(2.0f) - F(1.0f);
}

/// The plane that a brick's face is tilted to, -1 to 1.
HWY_INLINE F slopeOf(const Bricks& bricks)
{
    const SinCos way = sinCosOfTurns(unitOf(nextHash(bricks.hash)));
    const F x = bricks.u * F(2.0f) - F(1.0f), y = bricks.v * F(2.0f) - F(1.0f);
    return (x * way.cosine + y * way.sine) * F(0.70710678f);
}

HWY_INLINE F heightOf(const BrickState& state, const Bricks& bricks)
{
    // The bevel is at least a pixel wide: it is what smooths the edge.
    const F t = clampOf(bricks.inside / F(std::max(state.bevel, state.pixel)) +
                            F(state.bevel > state.pixel ? 0.0f : 0.5f),
                        F(0.0f), F(1.0f));
    const F profile = t * t * (F(3.0f) - F(2.0f) * t);
    const F low = unitOf(nextHash(nextHash(bricks.hash))) * F(state.heightVariation);
    const F top = F(1.0f) - low - (slopeOf(bricks) + F(1.0f)) * F(0.5f * state.tilt);
    return profile * maxOf(top, F(0.0f));
}

HWY_INLINE F coverageOf(const BrickState& state, const Bricks& bricks)
{
    return clampOf(bricks.inside * F(1.0f / state.pixel) + F(0.5f), F(0.0f), F(1.0f));
}

HWY_INLINE F brickValue(const BrickState& state, F x, float y)
{
    const Bricks bricks = bricksAt(state, x, y);
    switch (state.output) {
    case BrickOutput::Height:
        return heightOf(state, bricks);
    case BrickOutput::Mask:
        return coverageOf(state, bricks);
    case BrickOutput::Value:
        return unitOf(bricks.hash);
    case BrickOutput::GradientU:
        return bricks.u;
    case BrickOutput::GradientV:
        return bricks.v;
    case BrickOutput::Slope:
        return slopeOf(bricks) * F(0.5f) + F(0.5f);
    case BrickOutput::Edge:
        return maxOf(bricks.inside, F(0.0f)) * F(2.0f);
    }
    return F(0.0f);
}

void brickRow(const RowJob& job)
{
    const auto& state = static_cast<const BrickState&>(*job.state);
    // What changes from brick to brick, and not by distance, is smoothed by four samples on a turned grid.
    const bool smooth = state.output == BrickOutput::Value || state.output == BrickOutput::GradientU ||
                        state.output == BrickOutput::GradientV || state.output == BrickOutput::Slope;
    constexpr float kSamples[4][2] = {
        {-0.375f, -0.125f}, {0.125f, -0.375f}, {0.375f, 0.125f}, {-0.125f, 0.375f}};
    const float y = centreOf(job.y, job.height);
    const float pixelX = 1.0f / static_cast<float>(job.width), pixelY = 1.0f / static_cast<float>(job.height);
    for (int i = 0; i < job.count; i += kLanes) {
        const F x = centresFrom(job.x + i, job.width);
        F sum(0.0f);
        if (smooth) {
            for (const auto& sample : kSamples)
                sum += brickValue(state, x + F(sample[0] * pixelX), y + sample[1] * pixelY);
            sum *= F(0.25f);
        } else {
            sum = brickValue(state, x, y);
        }
        store(sum, job.result[0] + i);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(brickRow)

static std::unique_ptr<State> prepareBrick(const Setup& setup)
{
    auto state = std::make_unique<BrickState>();
    const ParameterValue* p = setup.parameters;
    const auto clampFloat = [](float value, float low, float high) {
        return std::min(std::max(value, low), high);
    };
    state->columns = clampFloat(static_cast<float>(p[0].i[0]), 1.0f, 4096.0f);
    state->rows = clampFloat(static_cast<float>(p[0].i[1]), 1.0f, 4096.0f);
    state->aspect =
        (static_cast<float>(setup.width) / state->columns) / (static_cast<float>(setup.height) / state->rows);
    state->offset = p[1].f[0];
    state->offsetVariation = p[2].f[0];
    state->mortar = clampFloat(p[3].f[0], 0.0f, std::min(1.0f, state->aspect));
    state->bevel = clampFloat(p[4].f[0], 0.0f, 1.0f);
    state->rounding = clampFloat(p[5].f[0], 0.0f, 1.0f);
    state->heightVariation = clampFloat(p[6].f[0], 0.0f, 1.0f);
    state->tilt = clampFloat(p[7].f[0], 0.0f, 1.0f);
    state->output = static_cast<BrickOutput>(std::min(std::max(p[8].i[0], 0), 6));
    state->pixel = state->rows / static_cast<float>(setup.height);
    state->seed = scalar::mixBits(static_cast<std::uint32_t>(setup.seed) + 0xb7e15163u);
    return state;
}

const NodeDeclaration brickNode{
    "brick",
    "Brick",
    "Patterns",
    "Rows of bricks with rounded corners and bevelled edges in a bed of mortar. Lengths are shares of a "
    "brick's height. The "
    "same parameters with another output give the matching masks and random values.",
    ResultChannels::Grey,
    Chance::Seeded,
    {},
    {{"bricks",
      ParameterType::Int2,
      {4, 8},
      1,
      64,
      "How many bricks lie in a row, and how many rows there are."},
     {"offset",
      ParameterType::Float,
      {0.5},
      0,
      1,
      "How far each row is shifted against the one above, in bricks."},
     {"offsetvariation", ParameterType::Float, {0.0}, 0, 1, "How far rows are shifted by chance, in bricks."},
     {"mortar", ParameterType::Float, {0.08}, 0, 1, "Width of the joints."},
     {"bevel", ParameterType::Float, {0.08}, 0, 1, "Width of the slope from a brick's edge to its face."},
     {"rounding", ParameterType::Float, {0.06}, 0, 0.5, "Radius of the corners."},
     {"heightvariation",
      ParameterType::Float,
      {0.2},
      0,
      1,
      "How much lower bricks lie by chance; changes the height output."},
     {"tilt",
      ParameterType::Float,
      {0.1},
      0,
      1,
      "How much faces are tilted by chance; changes the height output."},
     {"output",
      ParameterType::Choice,
      {0},
      0,
      6,
      "What to draw: height is the relief; mask is white on bricks; value is a random grey for each brick; u "
      "and v are the "
      "position within a brick; slope is a random gradient for each brick; edge is the distance from the "
      "edge, 1 in the middle.",
      {"height", "mask", "value", "u", "v", "slope", "edge"}}},
    prepareBrick,
    runbrickRow};

} // namespace vellor::nodes
#endif
