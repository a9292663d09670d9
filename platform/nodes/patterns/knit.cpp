#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

#include <algorithm>

// Knit stitches, the front of plain knitting, are columns of V shapes. Each leg of a V is a piece of yarn, a
// capsule that leans; legs of the stitch below go under those of the stitch above, whose tips they enter.
// Purl stitches, the back of it, hide their legs and show what joins them: the head of a loop, an arc over
// the middle of the stitch, and lower down the arc that hangs between the stitch and the next, bent the other
// way. Lengths are shares of a stitch's height.
//
// The plies wind around the yarn like the threads of a screw. How far they have turned is counted along the
// yarn of a row, which goes from the left to the right: up the left leg of a stitch and down the right one.
//
// The head of a purl stitch stands in for its left leg, what hangs beside it for its right one.
// Legs stand in columns half a stitch wide, and reach into those beside theirs and into the rows above and
// below. What chance does to the legs of those rows is worked out once for a chunk of a row of pixels, in
// lines with a number for each column. Which legs come near a pixel is asked once for its four samples.

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
    Direction,
    Column,
    Row,
    Along,
    Around
};

/// Which stitches are purled.
enum class KnitStitch
{
    Stockinette,
    Reverse,
    Rib1,
    Rib2,
    Garter,
    Seed
};

struct KnitState : State
{
    KnitStitch stitch = KnitStitch::Stockinette;
    // Arcs: half the length without the round ends, how far these lie below the middle, how thick they are
    // beside legs, and where they lie, down from the middle of the stitch.
    float purlReach = 0.3f, arch = 0.15f, fullness = 1.18f;
    float headDown = -0.2f, hangingDown = 0.3f;
    float knitHeight = 1.0f, purlHeight = 1.0f; // what stands out and what recedes
    float columns = 12.0f, rows = 12.0f;
    float aspect = 1.0f; // a stitch's width by its height
    float radius = 0.3f;
    float reach = 0.5f;               // half a leg's length without its round ends
    float leanX = 0.4f, leanY = 0.9f; // a leg's direction, upwards and outwards
    float bend = 0.2f, depth = 0.5f, variation = 0.0f;
    float plies = 2.0f;
    float turns = 0.6f;  // of the plies around the yarn, along a leg
    float groove = 0.0f; // how deep it is between plies, as a share of the radius
    bool wound = false;  // whether what is drawn asks for the plies
    // No leg shows further above or below its middle, nor does any sample of a pixel further from its axis.
    float above = 1.0f, near = 1.0f;
    float pixel = 0.01f;
    KnitOutput output = KnitOutput::Height;
    std::uint32_t seed = 0;
};

constexpr int kKnitChunk = 256;
constexpr float kCrest = 0.25f; // where a leg stands out most, -1 at its lower end to 1 at its upper one

/// Numbers of a row of legs, a line for each.
struct LegLine
{
    alignas(64) float random[2 * kKnitChunk + 96]; // -0.5 to 0.5
    alignas(64) float down[2 * kKnitChunk + 96];   // the leg's middle, from the middle of its stitch
    alignas(64) float value[2 * kKnitChunk + 96];
    alignas(64) float start[2 * kKnitChunk + 96];  // how far the plies have turned where the leg begins
    alignas(64) float purled[2 * kKnitChunk + 96]; // 0: knitted, 1: purled, 2: not there
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/patterns/knit.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/lattice-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

/// A leg at some pixels, which may all lie beside it.
struct Leg
{
    F straight, aside; // from its middle along its axis, upwards, and across, without the bend
    F random, value;   // what is shown for value, column and row, and where along the yarn the leg begins
    F start;           // how far the plies have turned there, in turns
    F side;            // 1 for legs that lean to the right, -1 to the left
    M near;
    M purled;
    F leanX, leanY; // its direction
};

/// What shows at a sample of some pixels.
struct Yarn
{
    F height, cover, shown;
};

/// The way along a leg, from -1 to 1, by the direction that it leans to, in one number.
HWY_INLINE F directionOf(const KnitState& state, F coded)
{
    // Arcs are coded as 4 and their slope, -1 to 1.
    const F lying = F(1.0f) - atan2Of(coded - F(4.0f), F(1.0f)) * F(1.0f / kPi);
    const F square = maxOf(absOf(coded) - F(1.0f), F(0.0f));
    const F side = choose(coded < F(0.0f), F(-1.0f), choose(coded > F(0.0f), F(1.0f), F(0.0f)));
    // Legs on the right lean to the right, from an upright yarn at the ends to the full lean in the middle.
    const F lean = F(state.leanX) * (F(1.0f) + F(state.bend) * (F(0.5f) - F(1.5f) * square));
    const F standing = F(0.5f) + side * atan2Of(lean, F(state.leanY)) * F(1.0f / kPi);
    return choose(coded > F(2.5f), lying - floorOf(lying), standing);
}

/// Turns around a yarn from its middle line, -1 to 1 across: the arc sine to a hundredth of a turn.
HWY_INLINE F turnsAcross(F across)
{
    const F second = across * across, fourth = second * second, eighth = fourth * fourth;
    return across * (F(0.1592f) + F(0.0265f) * second + F(0.0643f) * eighth * eighth);
}

/// How much of a leg the yarn has gone along where t is, 0 to 1.
template<bool purls> HWY_INLINE F goneAt(const Leg& leg, F t)
{
    F forward = -leg.side;
    if constexpr (purls)
        forward = choose(leg.purled, F(1.0f), forward);
    return F(0.5f) + F(0.5f) * t * forward;
}

/// How far the plies have turned, in turns, -1 to 1 across the yarn.
template<bool purls> HWY_INLINE F turnedAt(const KnitState& state, const Leg& leg, F t, F across)
{
    F aside = clampOf(across, F(-1.0f), F(1.0f));
    if constexpr (purls)
        aside = choose(leg.purled, -aside, aside);
    return leg.start + F(state.turns) * goneAt<purls>(leg, t) - turnsAcross(aside);
}

/// How deep the groove between plies is, 0 in the middle of a ply to 1 between two; `phase` counts plies.
HWY_INLINE F grooveAt(F phase)
{
    const F aside = F(2.0f) * (phase - floorOf(phase)) - F(1.0f);
    const F square = aside * aside;
    return square * (F(0.4f) + F(0.6f) * square);
}

/// Lays the leg at one sample of the pixels over what shows there.
template<bool purls>
HWY_INLINE void addLeg(const KnitState& state, const Leg& leg, F straight, F across, Yarn& top)
{
    // Along the leg, -1 at its lower, inner end and 1 at its upper, outer one; the axis bends like an S, so
    // that both ends run upright.
    F reach(state.reach), length(1.0f / (state.reach + state.radius));
    if constexpr (purls) {
        reach = choose(leg.purled, F(state.purlReach), reach);
        length = choose(leg.purled, F(1.0f / (state.purlReach + state.radius)), length);
    }
    const F t = clampOf(straight * length, F(-1.0f), F(1.0f));
    F bend = (t * t * t - t) * F(state.bend * state.radius);
    if constexpr (purls)
        bend = choose(leg.purled, leg.side * t * t * F(state.arch), bend);
    const F aside = across + bend;
    const F beyond = maxOf(absOf(straight) - reach, F(0.0f));
    const F square = aside * aside + beyond * beyond;
    // Thinner towards the ends, where the yarn dives.
    F radius =
        F(state.radius) * (F(1.0f) - F(0.18f) * t * t) * (F(1.0f) + leg.random * F(0.2f * state.variation));
    if constexpr (purls)
        radius = choose(leg.purled, radius * F(state.fullness), radius);
    const F outside = radius + F(0.5f * state.pixel);
    const M reached = leg.near & (square < outside * outside);
    if (hn::AllFalse(FloatTag(), reached.m))
        return;
    const F narrow = F(1.0f) / radius;
    const F u = t * F(0.5f) + F(0.5f), v = clampOf(aside * narrow * F(0.5f) + F(0.5f), F(0.0f), F(1.0f));
    F turned(0.0f), share(1.0f), open = radius;
    if (state.wound) {
        turned = turnedAt<purls>(state, leg, t, aside * narrow);
        // Between plies the yarn is thinner, all around.
        share = F(1.0f) - F(state.groove) * grooveAt(turned * F(state.plies));
        open = radius * share;
    }
    const F apart = sqrtOf(square);
    const F round = sqrtOf(maxOf(share * share - square * narrow * narrow, F(0.0f)));
    const F edge = clampOf((open - apart) * F(1.0f / state.pixel) + F(0.5f), F(0.0f), F(1.0f));
    const F cover = choose(reached, edge, F(0.0f));
    // Both ends dive, the lower one deeper: that between the tips of the stitch below.
    const F ahead = (t - F(kCrest)) * F(1.0f / (1.0f + kCrest));
    F course = F(1.0f) - F(state.depth) * ahead * ahead;
    // Arcs dive at both ends alike.
    if constexpr (purls)
        course = choose(leg.purled, F(state.purlHeight) * (F(1.0f) - F(0.8f * state.depth) * t * t),
                        F(state.knitHeight) * course);
    const F height = (F(0.08f) + F(0.92f) * course * round) *
                     (F(1.0f) - (leg.random + F(0.5f)) * F(0.15f * state.variation)) * cover;
    const M higher = height > top.height;
    top.height = maxOf(height, top.height);
    top.cover = maxOf(top.cover, cover);
    switch (state.output) {
    case KnitOutput::Value:
    case KnitOutput::Column:
    case KnitOutput::Row:
        top.shown = choose(higher, leg.value, top.shown);
        break;
    case KnitOutput::U:
        top.shown = choose(higher, u, top.shown);
        break;
    case KnitOutput::V:
        top.shown = choose(higher, v, top.shown);
        break;
    case KnitOutput::Along:
        top.shown = choose(higher, leg.value + goneAt<purls>(leg, t) * F(0.5f / state.columns), top.shown);
        break;
    case KnitOutput::Around:
        top.shown = choose(higher, turned - floorOf(turned), top.shown);
        break;
    case KnitOutput::Direction: {
        F coded = leg.side * (F(1.0f) + t * t);
        if constexpr (purls)
            coded = choose(leg.purled, F(4.0f) + leg.side * t * F(2.0f * state.arch) * length, coded);
        top.shown = choose(higher, coded, top.shown);
    } break;
    default:
        break;
    }
}

/// Samples on a turned grid, from the middle of a pixel.
struct KnitSamples
{
    float x[4] = {-0.375f, 0.125f, 0.375f, -0.125f}, y[4] = {-0.125f, -0.375f, 0.125f, 0.375f};
    KnitSamples(const KnitState& state, const RowJob& job)
    {
        for (float& across : x)
            across *= state.columns * state.aspect / static_cast<float>(job.width);
        for (float& down : y)
            down *= state.rows / static_cast<float>(job.height);
    }
};

/// The legs that a chunk of a row of pixels sees: those of its row of stitches and of the ones beside.
class LegRows
{
public:
    LegRows(const KnitState& state, const RowJob& job, int x, int count)
        : m_row(scalar::floorOf(centreOf(job.y, job.height) * state.rows))
    {
        const float perPixel = 2.0f * state.columns / static_cast<float>(job.width);
        m_first = static_cast<int>(static_cast<float>(x) * perPixel) - 3;
        const int last = static_cast<int>(static_cast<float>(x + count + kLanes) * perPixel) + 3;
        for (int step = -1; step <= 1; ++step) {
            LegLine& line = m_lines[step + 1];
            const U row = wrappedCell(F(m_row + static_cast<float>(step)), state.rows);
            for (int i = 0; i < last - m_first; i += kLanes) {
                const F leg = wrappedCellOf(countFrom(static_cast<float>(m_first + i)), 2.0f * state.columns);
                const F column = floorOf(leg * F(0.5f));
                const M onRight = leg - column > column;
                const U stitch = hashLattice(toInteger(column), row, U(state.seed));
                const U hash = mixBits(stitch + choose(onRight, U(1u), U(2u))), second = nextHash(hash);
                store(unitOf(hash) - F(0.5f), line.random + i);
                store((unitOf(second) - F(0.5f)) * F(0.1f * state.variation), line.down + i);
                store(shownOf(state, leg, column, row, second), line.value + i);
                if (state.wound)
                    store(startOf(state, leg, row) + (unitOf(hash) - F(0.5f)) * F(state.variation),
                          line.start + i);
                if (state.stitch != KnitStitch::Stockinette)
                    store(purledOf(state, column, onRight, row), line.purled + i);
            }
        }
    }

    float row() const { return m_row; }
    int first() const { return m_first; }
    const LegLine& line(int step) const { return m_lines[step + 1]; }

private:
    /// A number for each leg: by chance, or the place of its stitch.
    static HWY_INLINE F shownOf(const KnitState& state, F leg, F column, U row, U hash)
    {
        if (state.output == KnitOutput::Along)
            return leg * F(0.5f / state.columns);
        if (state.output == KnitOutput::Column)
            return (column + F(0.5f)) * F(1.0f / state.columns);
        if (state.output == KnitOutput::Row)
            return (toFloat(row) + F(0.5f)) * F(1.0f / state.rows);
        return unitOf(nextHash(hash));
    }

    /// Each row's yarn starts turned by chance.
    static HWY_INLINE F startOf(const KnitState& state, F leg, U row)
    {
        const F start = leg * F(state.turns) + unitOf(hashLattice(row, row, U(state.seed ^ 0x2c9277b5u)));
        return start - floorOf(start);
    }

    /// What stands in LegLine. Nothing hangs between a purl stitch and a knit one: there the yarn goes
    /// through the fabric.
    static HWY_INLINE F purledOf(const KnitState& state, F column, M onRight, U row)
    {
        const F beside = wrappedCellOf(column + F(1.0f), state.columns);
        const F purled = purledOf(state, toInteger(column), row),
                next = purledOf(state, toInteger(beside), row);
        // Rib2 keeps it, half hidden: two heads alone would leave holes.
        if (state.stitch == KnitStitch::Rib2)
            return purled;
        return choose(onRight & (purled > next), F(2.0f), purled);
    }

    static HWY_INLINE F purledOf(const KnitState& state, U column, U row)
    {
        switch (state.stitch) {
        case KnitStitch::Reverse:
            return F(1.0f);
        case KnitStitch::Rib1:
            return toFloat(column & U(1u));
        case KnitStitch::Rib2:
            return toFloat((column >> 1) & U(1u));
        case KnitStitch::Garter:
            return toFloat(row & U(1u));
        case KnitStitch::Seed:
            return toFloat((column + row) & U(1u));
        default:
            return F(0.0f);
        }
    }

    static HWY_INLINE F wrappedCellOf(F cell, float count) { return toFloat(wrappedCell(cell, count)); }

    float m_row;
    int m_first;
    LegLine m_lines[3];
};

/// A vector of pixels, y rows of stitches down from the middle of the row that LegRows starts from.
template<class Columns, bool purls>
HWY_INLINE F knitAt(const KnitState& state, const LegRows& rows, F u, float y, const KnitSamples& samples)
{
    const F halves = u * F(2.0f * state.columns), half = floorOf(halves);
    const F column = floorOf(half * F(0.5f));
    const M onRight = half - column > column;
    const F right = choose(onRight, F(1.0f), F(-1.0f));
    // The own leg stands beside the other one of its stitch and one of the stitch beside, both mirrored.
    const F ownX = absOf(halves * F(0.5f) - column - F(0.5f)) * F(state.aspect);
    const F otherX = F(state.aspect) - ownX;
    const Columns columns(toInteger(half), rows.first() + 1); // the one before is read, too
    const bool between = state.output == KnitOutput::U || state.output == KnitOutput::V;
    Yarn tops[4];
    for (Yarn& top : tops)
        top = {F(0.0f), F(0.0f), F(between ? 0.5f : 0.0f)};
    for (int step = -1; step <= 1; ++step) {
        const float down = y - static_cast<float>(step);
        if (scalar::absOf(down) > state.above)
            continue;
        const LegLine& line = rows.line(step);
        // x goes from the middle line of the leg's stitch to the outside.
        const auto look = [&](int beside, F x, F side) {
            Leg leg;
            leg.random = columns.read(line.random + 1 + beside);
            M there = x == x;
            F middle(0.25f * state.aspect), below(0.0f), reach(state.reach);
            leg.leanX = F(state.leanX);
            leg.leanY = F(state.leanY);
            if constexpr (purls) {
                const F purled = columns.read(line.purled + 1 + beside);
                leg.purled = purled > F(0.5f);
                there = purled < F(1.5f);
                const M hanging = side > F(0.0f);
                middle = choose(leg.purled, choose(hanging, F(0.5f * state.aspect), F(0.0f)), middle);
                below = choose(leg.purled, choose(hanging, F(state.hangingDown), F(state.headDown)), below);
                reach = choose(leg.purled, F(state.purlReach), reach);
                leg.leanX = choose(leg.purled, F(1.0f), leg.leanX);
                leg.leanY = choose(leg.purled, F(0.0f), leg.leanY);
            }
            // Along arcs it goes to the right, whichever way is outwards.
            F turned = x - middle, turn = side;
            if constexpr (purls) {
                turned = choose(leg.purled, turned * side, turned);
                turn = choose(leg.purled, F(1.0f), side);
            }
            const F dx = turned - leg.random * F(0.1f * state.variation);
            const F dy = F(down) - below - columns.read(line.down + 1 + beside);
            leg.straight = dx * leg.leanX - dy * leg.leanY;
            leg.aside = dx * leg.leanY + dy * leg.leanX;
            leg.near =
                (absOf(leg.aside) < F(state.near)) & (absOf(leg.straight) < reach + F(state.near)) & there;
            if (hn::AllFalse(FloatTag(), leg.near.m))
                return;
            leg.value = columns.read(line.value + 1 + beside);
            if (state.wound)
                leg.start = columns.read(line.start + 1 + beside);
            leg.side = side;
            for (int i = 0; i < 4; ++i) {
                const F along = turn * F(samples.x[i]), lower(samples.y[i]);
                addLeg<purls>(state, leg, leg.straight + along * leg.leanX - lower * leg.leanY,
                              leg.aside + along * leg.leanY + lower * leg.leanX, tops[i]);
            }
        };
        look(0, ownX, right);
        look(-1, choose(onRight, -ownX, otherX), -right);
        look(1, choose(onRight, otherX, -ownX), -right);
    }
    if (state.output >= KnitOutput::Column) {
        // Places do not mix: the sample that lies highest shows.
        Yarn highest = tops[0];
        for (const Yarn& top : tops) {
            highest.shown = choose(top.height > highest.height, top.shown, highest.shown);
            highest.height = maxOf(top.height, highest.height);
        }
        return highest.shown;
    }
    F sum(0.0f);
    for (const Yarn& top : tops) {
        if (state.output == KnitOutput::Height)
            sum += top.height;
        else if (state.output == KnitOutput::Mask)
            sum += top.cover;
        else if (state.output == KnitOutput::Direction)
            sum += directionOf(state, top.shown);
        else
            sum += top.shown;
    }
    return sum * F(0.25f);
}

template<class Columns, bool purls>
void knitPixels(const KnitState& state, const RowJob& job, int x, int count, float* result)
{
    const LegRows rows(state, job, x, count);
    const KnitSamples samples(state, job);
    const float y = centreOf(job.y, job.height) * state.rows - rows.row() - 0.5f;
    for (int i = 0; i < count; i += kLanes)
        store(knitAt<Columns, purls>(state, rows, centresFrom(x + i, job.width), y, samples), result + i);
}

void knitRow(const RowJob& job)
{
    const auto& state = static_cast<const KnitState&>(*job.state);
    for (int done = 0; done < job.count; done += kKnitChunk) {
        const int count = std::min(kKnitChunk, job.count - done);
        const bool near = 4.0f * state.columns <= static_cast<float>(job.width);
        const bool purls = state.stitch != KnitStitch::Stockinette;
        const auto draw = near ? (purls ? knitPixels<NearColumns, true> : knitPixels<NearColumns, false>)
                               : (purls ? knitPixels<FarColumns, true> : knitPixels<FarColumns, false>);
        draw(state, job, job.x + done, count, job.result[0] + done);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(knitRow)

/// `count` or the next number that whole repeats of a pattern take.
static float repeated(float count, int repeat)
{
    const auto whole = static_cast<float>(repeat);
    return scalar::floorOf((count + whole - 1.0f) / whole) * whole;
}

/// How purl stitches lie among the others.
static void setPurls(KnitState& state, float relief)
{
    switch (state.stitch) {
    case KnitStitch::Rib1: // heads alone, drawn back
        state.headDown = 0.0f;
        state.fullness = 1.7f;
        state.purlHeight = 1.0f - 0.55f * relief;
        break;
    case KnitStitch::Rib2:
        state.headDown = -0.14f;
        state.fullness = 1.5f;
        state.purlHeight = 1.0f - 0.55f * relief;
        break;
    case KnitStitch::Garter: // ridges, which push rows apart
        state.headDown = -0.36f;
        state.hangingDown = 0.36f;
        state.radius *= 1.2f; // or legs side by side leave holes
        state.fullness = 1.2f;
        state.knitHeight = 1.0f - 0.35f * relief;
        break;
    case KnitStitch::Seed: // heads alone
        state.headDown = 0.22f;
        state.radius *= 1.12f;
        state.fullness = 1.4f;
        state.knitHeight = 1.0f - 0.35f * relief;
        break;
    default:
        break;
    }
    state.purlReach = std::max(0.47f * state.aspect - 0.6f * state.radius, 0.05f);
    state.arch = (0.08f + 0.3f * state.bend) * state.radius / 0.3f;
}

static std::unique_ptr<State> prepareKnit(const Setup& setup)
{
    auto state = std::make_unique<KnitState>();
    const ParameterValue* p = setup.parameters;
    state->stitch = static_cast<KnitStitch>(held(p[8].i[0], 0, 5));
    const bool across = state->stitch == KnitStitch::Rib1 || state->stitch == KnitStitch::Seed;
    const bool down = state->stitch == KnitStitch::Garter || state->stitch == KnitStitch::Seed;
    state->columns =
        repeated(static_cast<float>(held(p[0].i[0], 1, 2048)), across                              ? 2
                                                               : state->stitch == KnitStitch::Rib2 ? 4
                                                                                                   : 1);
    // Stitches of plain knitting are wider than high, about 5 to 4; ridges and bumps pull rows together.
    const float shape = state->stitch == KnitStitch::Garter ? 1.9f
                        : state->stitch == KnitStitch::Seed ? 1.6f
                                                            : 1.25f;
    const float usual =
        state->columns * shape * static_cast<float>(setup.height) / static_cast<float>(setup.width);
    state->rows = p[0].i[1] > 0 ? static_cast<float>(held(p[0].i[1], 1, 4096))
                                : held(scalar::roundOf(usual), 1.0f, 4096.0f);
    state->rows = repeated(state->rows, down ? 2 : 1);
    state->aspect = held((static_cast<float>(setup.width) / state->columns) /
                             (static_cast<float>(setup.height) / state->rows),
                         0.05f, 20.0f);
    state->radius = held(p[1].f[0], 0.1f, 1.0f) * 0.28f * state->aspect;
    // A leg reaches from low in its stitch, near the middle, into the stitch above.
    // Where purl stitches squeeze them, legs stand steeper.
    const float lean = state->stitch == KnitStitch::Garter ? 0.12f
                       : state->stitch == KnitStitch::Seed ? 0.15f
                                                           : 0.24f;
    const float acrossLeg = lean * state->aspect, downLeg = 0.72f;
    const float length = scalar::sqrtOf(acrossLeg * acrossLeg + downLeg * downLeg);
    state->leanX = acrossLeg / length;
    state->leanY = downLeg / length;
    state->reach = std::max(length - 0.6f * state->radius, 0.05f);
    state->bend = held(p[2].f[0], 0.0f, 1.0f);
    state->pixel = state->rows / static_cast<float>(setup.height);
    if (state->stitch != KnitStitch::Stockinette)
        setPurls(*state, held(p[9].f[0], 0.0f, 1.0f));
    // Yarn at its thickest and as far as it bends, a pixel, and what chance adds at most.
    state->near = state->radius * (1.1f + 0.4f * state->bend) +
                  std::max(state->pixel, state->columns * state->aspect / static_cast<float>(setup.width));
    if (state->stitch != KnitStitch::Stockinette)
        state->near = state->near * state->fullness + state->arch;
    state->above = state->reach * state->leanY + state->near + 0.06f;
    state->depth = held(p[3].f[0], 0.0f, 1.0f);
    state->plies = static_cast<float>(held(p[4].i[0], 1, 16));
    state->groove = 0.35f * held(p[5].f[0], 0.0f, 1.0f);
    state->variation = held(p[6].f[0], 0.0f, 1.0f);
    state->output = static_cast<KnitOutput>(held(p[7].i[0], 0, 9));
    state->wound = state->groove > 0.0f || state->output == KnitOutput::Around;
    // The yarn of a row comes back as it went out.
    state->turns = scalar::roundOf(held(p[10].f[0], 0.0f, 16.0f) * state->columns) / (2.0f * state->columns);
    // A pixel sees no more than one stitch: what is finer would only be noise.
    state->columns = std::min(state->columns, static_cast<float>(setup.width));
    state->seed = scalar::mixBits(static_cast<std::uint32_t>(setup.seed) + 0x6b17a3c5u);
    return state;
}

const NodeDeclaration knitNode{
    "knit",
    "Knit",
    "Patterns",
    "Knitted stitches of round yarn: the V shapes of knit stitches, that dive under the stitch below, and "
    "the "
    "arcs of purl stitches. The same "
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
      "How many plies wind around each other, as in yarn spun of threads."},
     {"twist", ParameterType::Float, {0.4}, 0, 1, "How deep the grooves between plies are."},
     {"variation", ParameterType::Float, {0.3}, 0, 1, "How unlike each other stitches are by chance."},
     {"output",
      ParameterType::Choice,
      {0},
      0,
      9,
      "What to draw: height is the relief; mask is white on yarn; value is a random grey for each leg of a "
      "stitch; "
      "u runs along the yarn and v across it; direction is the yarn's angle, a half for upright and a whole "
      "range "
      "for half a turn; column and row are the place of the stitch that shows, 0 to 1 from the left and from "
      "the top; along and around are the place on the yarn, along a row's from the left to the right and "
      "around it "
      "in turns, from where the plies have turned to: fibres and plies lie in lines of equal around. The "
      "last four "
      "are unmixed at borders: read charts of colours, noise for fibres and the like there.",
      {"height", "mask", "value", "u", "v", "direction", "column", "row", "along", "around"}},
     {"stitch",
      ParameterType::Choice,
      {0},
      0,
      5,
      "Which stitches are purled: none in stockinette, all in reverse, every second column in rib1 and two "
      "of "
      "four in rib2, every second row in garter, and every second stitch like a checker in seed. Stitches "
      "and "
      "rows are taken to the next whole repeat.",
      {"stockinette", "reverse", "rib1", "rib2", "garter", "seed"}},
     {"relief",
      ParameterType::Float,
      {0.6},
      0,
      1,
      "How far the purled columns of ribs recede, and purl stitches of garter and seed stand out."},
     {"turns",
      ParameterType::Float,
      {1.4},
      0,
      16,
      "How often the plies turn around the yarn within a stitch; a row has a whole number of turns, which "
      "variation makes uneven."}},
    prepareKnit,
    runknitRow};

} // namespace vellor::nodes
#endif
