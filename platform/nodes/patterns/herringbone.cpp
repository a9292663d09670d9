#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/patterns/blocks.h"
#include "platform/nodes/scalar.h"

#ifndef VELLOR_HERRINGBONE_STATE
#define VELLOR_HERRINGBONE_STATE
namespace vellor::nodes {
namespace {

// On squares as wide as a plank, of which a plank takes `length`: square (x, y) is part of a plank along x
// where (x - y) modulo 2 length is below the length, else of one along y. A step of (1, 1) changes nothing,
// nor does one of (length, -length), so that the pattern also tiles when it is turned by an eighth.
struct HerringboneState : BlockState
{
    float length = 4.0f;
    float xu = 1.0f, xv = 0.0f, yu = 0.0f, yv = 1.0f; // from shares of the picture to squares
    bool diagonal = true;
    float aroundX = 8.0f, aroundY = 8.0f; // squares, or of x - y and x + y, after which planks come again
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/patterns/herringbone.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/patterns/blocks-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

HWY_INLINE Blocks planksAt(const HerringboneState& state, F u, float v)
{
    const F x = u * F(state.xu) + F(v * state.xv), y = u * F(state.yu) + F(v * state.yv);
    const F column = floorOf(x), row = floorOf(y);
    const F place = aroundOf(column - row, 2.0f * state.length);
    const M along = place < F(state.length); // the plank lies along x
    // Squares from the plank's first one.
    const F passed = choose(along, place, F(2.0f * state.length - 1.0f) - place);
    const F firstX = choose(along, column - passed, column), firstY = choose(along, row, row - passed);
    const F fx = x - column, fy = y - row;
    Blocks result;
    result.u = (passed + choose(along, fx, fy)) * F(1.0f / state.length);
    result.v = choose(along, fy, fx);
    const F idX = aroundOf(state.diagonal ? firstX - firstY : firstX, state.aroundX);
    const F idY = aroundOf(state.diagonal ? firstX + firstY : firstY, state.aroundY);
    const U kind = choose(along, U(0u), U(0x9e3779b9u));
    result.hash = hashLattice(toInteger(idX), toInteger(idY), U(state.seed) ^ kind);
    result.inside =
        insideBox((result.u - F(0.5f)) * F(state.length), result.v - F(0.5f),
                  F(0.5f * (state.length - state.mortar)), F(0.5f * (1.0f - state.mortar)), state.rounding);
    result.direction = choose(along, F(0.0f), F(1.0f));
    return result;
}

void herringboneRow(const RowJob& job)
{
    const auto& state = static_cast<const HerringboneState&>(*job.state);
    blockRow(job, state, [&](F x, float y) { return planksAt(state, x, y); });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(herringboneRow)

static std::unique_ptr<State> prepareHerringbone(const Setup& setup)
{
    auto state = std::make_unique<HerringboneState>();
    const ParameterValue* p = setup.parameters;
    state->read(p + 3, setup);
    const auto zigzags = static_cast<float>(held(p[0].i[0], 1, 512));
    state->length = static_cast<float>(held(p[1].i[0], 2, 32));
    state->diagonal = p[2].i[0] == 0;
    const float aspect = static_cast<float>(setup.height) / static_cast<float>(setup.width);
    const auto whole = [](float count) { return held(scalar::roundOf(count), 1.0f, 32768.0f); };
    if (state->diagonal) {
        // (length, -length) goes to the right, (1, 1) down.
        const float down = whole(zigzags * state->length * aspect);
        state->xu = zigzags * state->length;
        state->yu = -state->xu;
        state->xv = state->yv = down;
        state->aroundX = 2.0f * state->xu;
        state->aroundY = 2.0f * down;
        state->pixel = 1.41421356f * state->xu / static_cast<float>(setup.width);
    } else {
        state->aroundX = state->xu = zigzags * 2.0f * state->length;
        state->aroundY = state->yv = whole(zigzags * aspect) * 2.0f * state->length;
        state->pixel = state->xu / static_cast<float>(setup.width);
    }
    return state;
}

const NodeDeclaration herringboneNode{
    "herringbone",
    "Herringbone",
    "Patterns",
    "Planks that meet end to side in zigzags, for parquet and paving. Lengths are shares of a plank's width; "
    "u runs "
    "along each plank. The same parameters with another output give the matching masks and random values.",
    ResultChannels::Grey,
    Chance::Seeded,
    {},
    blockParameters(
        {{"zigzags", ParameterType::Int, {2}, 1, 64, "How many zigzags lie side by side."},
         {"length", ParameterType::Int, {5}, 2, 16, "A plank's length in widths."},
         {"orientation",
          ParameterType::Choice,
          {0},
          0,
          1,
          "Whether planks lie at an eighth of a turn, with zigzags across the picture, or along its sides.",
          {"diagonal", "straight"}}},
        true),
    prepareHerringbone,
    runherringboneRow};

} // namespace vellor::nodes
#endif
