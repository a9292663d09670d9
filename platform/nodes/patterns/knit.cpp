#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

// Stocking stitch: the front of plain knitting, columns of V shapes. Each leg of a V is a piece of yarn, a
// capsule that leans; legs of the stitch below go under those of the stitch above, whose tips they enter.
// Lengths are shares of a stitch's height.

#ifndef VELLOR_KNIT_STATE
#define VELLOR_KNIT_STATE
namespace vellor::nodes {
namespace {

enum class KnitOutput
{
    Height,
    Mask,
    Value,
    U,
    V,
    Direction
};

struct KnitState : State
{
    float columns = 12.0f, rows = 12.0f;
    float aspect = 1.0f; // a stitch's width by its height
    float radius = 0.3f;
    float reach = 0.5f;               // half a leg's length without its round ends
    float leanX = 0.4f, leanY = 0.9f; // a leg's direction, upwards and outwards
    float bend = 0.2f, depth = 0.5f, twist = 0.0f, variation = 0.0f;
    float plies = 2.0f;
    float pixel = 0.01f;
    KnitOutput output = KnitOutput::Height;
    std::uint32_t seed = 0;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/patterns/knit.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/patterns/blocks-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

struct Yarn
{
    F height, cover, u, v, direction, hash;
};

/// The leg on the right (side 1) or left (-1) of the stitch whose cell starts at row `row`; x from the cell's
/// middle line to the outside, y down from the middle of that stitch's cell.
HWY_INLINE Yarn legAt(const KnitState& state, F x, F y, U hash, F side)
{
    // Along the leg, -1 at its lower, inner end and 1 at its upper, outer one; the axis bends like an S, so
    // that both ends run upright.
    const F random = unitOf(hash) - F(0.5f);
    const F middleX(0.25f * state.aspect);
    const F dx = x - middleX - random * F(0.1f * state.variation);
    const F dy = y - (unitOf(nextHash(hash)) - F(0.5f)) * F(0.1f * state.variation);
    const F straight = dx * F(state.leanX) - dy * F(state.leanY);
    const F t = clampOf(straight * F(1.0f / (state.reach + state.radius)), F(-1.0f), F(1.0f));
    const F sway = (t * t * t - t) * F(state.bend * state.radius);
    const F aside = dx * F(state.leanY) + dy * F(state.leanX) + sway;
    const F beyond = maxOf(absOf(straight) - F(state.reach), F(0.0f));
    const F distance = sqrtOf(aside * aside + beyond * beyond);
    // Thinner towards the ends, where the yarn dives.
    const F radius =
        F(state.radius) * (F(1.0f) - F(0.18f) * t * t) * (F(1.0f) + random * F(0.2f * state.variation));
    const F inside = radius - distance;
    const F share = clampOf(distance / radius, F(0.0f), F(1.0f));
    const F round = sqrtOf(maxOf(F(1.0f) - share * share, F(0.0f)));
    Yarn yarn;
    yarn.cover = clampOf(inside * F(1.0f / state.pixel) + F(0.5f), F(0.0f), F(1.0f));
    yarn.u = t * F(0.5f) + F(0.5f);
    yarn.v = clampOf(aside / radius * F(0.5f) + F(0.5f), F(0.0f), F(1.0f));
    // The lower end dives behind the stitch below's tips, the upper end lies open.
    const F course = F(1.0f) - F(state.depth) * (F(0.5f) - F(0.5f) * t);
    // Plies: ridges that wind around the yarn.
    const F wound = yarn.u * F(2.2f) + side * (yarn.v - F(0.5f)) * F(0.9f);
    const F wave = sinCosOfTurns(wound * F(state.plies)).cosine;
    const F ridges = F(1.0f) - F(0.22f * state.twist) * (F(0.5f) - F(0.5f) * wave);
    yarn.height = (F(0.08f) + F(0.92f) * course * round) * ridges *
                  (F(1.0f) - (random + F(0.5f)) * F(0.15f * state.variation)) * yarn.cover;
    yarn.hash = unitOf(nextHash(nextHash(hash)));
    yarn.direction = side;
    return yarn;
}

HWY_INLINE void take(Yarn& top, const Yarn& other)
{
    const M higher = other.height > top.height;
    top.height = choose(higher, other.height, top.height);
    top.cover = maxOf(top.cover, other.cover);
    top.u = choose(higher, other.u, top.u);
    top.v = choose(higher, other.v, top.v);
    top.direction = choose(higher, other.direction, top.direction);
    top.hash = choose(higher, other.hash, top.hash);
}

HWY_INLINE F knitAt(const KnitState& state, F u, F v)
{
    const F x = u * F(state.columns), y = v * F(state.rows);
    const F column = floorOf(x), row = floorOf(y);
    const F fx = x - column - F(0.5f), fy = y - row - F(0.5f);
    const M onRight = fx >= F(0.0f);
    const F right = choose(onRight, F(1.0f), F(-1.0f));
    const U columnIndex = toInteger(aroundOf(column, state.columns));
    // The own half of the stitch and its two mirror images: across the middle line and across the side.
    const F ownX = absOf(fx) * F(state.aspect);
    Yarn top{F(0.0f), F(0.0f), F(0.5f), F(0.5f), F(0.0f), F(0.0f)};
    for (int step = -1; step <= 1; ++step) {
        const F stitch = row + F(static_cast<float>(step));
        const F dy = fy - F(static_cast<float>(step));
        const U rowIndex = toInteger(aroundOf(stitch, state.rows));
        const U hash = hashLattice(columnIndex, rowIndex, U(state.seed));
        const U neighbour =
            hashLattice(toInteger(aroundOf(column + right, state.columns)), rowIndex, U(state.seed));
        const auto half = [](U stitchHash, M rightHalf) {
            return mixBits(stitchHash + choose(rightHalf, U(1u), U(2u)));
        };
        take(top, legAt(state, ownX, dy, half(hash, onRight), right));
        take(top, legAt(state, -ownX, dy, half(hash, !onRight), -right));
        take(top, legAt(state, F(state.aspect) - ownX, dy, half(neighbour, !onRight), -right));
    }
    switch (state.output) {
    case KnitOutput::Mask:
        return top.cover;
    case KnitOutput::Value:
        return top.hash;
    case KnitOutput::U:
        return top.u;
    case KnitOutput::V:
        return top.v;
    case KnitOutput::Direction: {
        // Legs on the right lean to the right, from an upright yarn at the ends to the full lean in the
        // middle.
        const F t = top.u * F(2.0f) - F(1.0f);
        const F lean = F(state.leanX) * (F(1.0f) + F(state.bend) * (F(0.5f) - F(1.5f) * t * t));
        return F(0.5f) + top.direction * atan2Of(lean, F(state.leanY)) * F(1.0f / kPi);
    }
    case KnitOutput::Height:
        break;
    }
    return top.height;
}

void knitRow(const RowJob& job)
{
    const auto& state = static_cast<const KnitState&>(*job.state);
    constexpr float kSamples[4][2] = {
        {-0.375f, -0.125f}, {0.125f, -0.375f}, {0.375f, 0.125f}, {-0.125f, 0.375f}};
    const float v = centreOf(job.y, job.height);
    const float pixelU = 1.0f / static_cast<float>(job.width), pixelV = 1.0f / static_cast<float>(job.height);
    for (int i = 0; i < job.count; i += kLanes) {
        const F u = centresFrom(job.x + i, job.width);
        F sum(0.0f);
        for (const auto& sample : kSamples)
            sum += knitAt(state, u + F(sample[0] * pixelU), F(v + sample[1] * pixelV));
        store(sum * F(0.25f), job.result[0] + i);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(knitRow)

static std::unique_ptr<State> prepareKnit(const Setup& setup)
{
    auto state = std::make_unique<KnitState>();
    const ParameterValue* p = setup.parameters;
    state->columns = static_cast<float>(held(p[0].i[0], 1, 2048));
    // Stitches of plain knitting are wider than high, about 5 to 4.
    const float usual =
        state->columns * 1.25f * static_cast<float>(setup.height) / static_cast<float>(setup.width);
    state->rows = p[0].i[1] > 0 ? static_cast<float>(held(p[0].i[1], 1, 4096))
                                : held(scalar::roundOf(usual), 1.0f, 4096.0f);
    state->aspect = held((static_cast<float>(setup.width) / state->columns) /
                             (static_cast<float>(setup.height) / state->rows),
                         0.05f, 20.0f);
    state->radius = held(p[1].f[0], 0.1f, 1.0f) * 0.28f * state->aspect;
    // A leg reaches from low in its stitch, near the middle, into the stitch above.
    const float acrossLeg = 0.22f * state->aspect, downLeg = 0.62f;
    const float length = scalar::sqrtOf(acrossLeg * acrossLeg + downLeg * downLeg);
    state->leanX = acrossLeg / length;
    state->leanY = downLeg / length;
    state->reach = std::max(length - 0.6f * state->radius, 0.05f);
    state->bend = held(p[2].f[0], 0.0f, 1.0f);
    state->depth = held(p[3].f[0], 0.0f, 1.0f);
    state->plies = static_cast<float>(held(p[4].i[0], 1, 16));
    state->twist = held(p[5].f[0], 0.0f, 1.0f);
    state->variation = held(p[6].f[0], 0.0f, 1.0f);
    state->output = static_cast<KnitOutput>(held(p[7].i[0], 0, 5));
    state->pixel = state->rows / static_cast<float>(setup.height);
    state->seed = scalar::mixBits(static_cast<std::uint32_t>(setup.seed) + 0x6b17a3c5u);
    return state;
}

const NodeDeclaration knitNode{
    "knit",
    "Knit",
    "Patterns",
    "Knitted stitches, the V shapes of stocking stitch, of round yarn that dives under the stitch below. The "
    "same "
    "parameters with another output give the matching masks, directions and positions along the yarn.",
    ResultChannels::Grey,
    Chance::Seeded,
    {},
    {{"stitches",
      ParameterType::Int2,
      {12, 0},
      1,
      256,
      "Stitches in a row, and rows; 0 rows gives stitches their usual shape, five wide to four high."},
     {"thickness",
      ParameterType::Float,
      {0.9},
      0.1,
      1,
      "How thick the yarn is; at 1 legs touch and overlap."},
     {"bend", ParameterType::Float, {0.5}, 0, 1, "How much legs bend like an S."},
     {"depth", ParameterType::Float, {0.6}, 0, 1, "How deep the yarn dives."},
     {"plies",
      ParameterType::Int,
      {3},
      1,
      16,
      "How many ridges wind around a leg, as of yarn spun of threads."},
     {"twist", ParameterType::Float, {0.4}, 0, 1, "How deep the grooves between plies are."},
     {"variation", ParameterType::Float, {0.3}, 0, 1, "How unlike each other stitches are by chance."},
     {"output",
      ParameterType::Choice,
      {0},
      0,
      5,
      "What to draw: height is the relief; mask is white on yarn; value is a random grey for each leg of a "
      "stitch; "
      "u runs along the yarn and v across it; direction is the yarn's angle, a half for upright and a whole "
      "range "
      "for half a turn.",
      {"height", "mask", "value", "u", "v", "direction"}}},
    prepareKnit,
    runknitRow};

} // namespace vellor::nodes
#endif
