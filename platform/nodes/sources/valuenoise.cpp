#include "platform/nodes/dispatch.h"
#include "platform/nodes/fractal.h"
#include "platform/nodes/kinds.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/sources/valuenoise.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

#include "platform/nodes/fractal-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

struct ValueBasis
{
    static constexpr int kLines = 2;           // the value, and what it lacks to the next column's
    static constexpr float kAmplitude = 0.85f; // keeps nearly all of a sum of octaves within 0 to 1

    static void fill(const FractalOctave& octave, float evolution, float amplitude, const LatticeRow& row,
                     int firstColumn, int columns, LatticeLines<kLines>& lines)
    {
        const float weight = fadeOf(row.f);
        for (int i = 0; i < columns + 1; i += kLanes) {
            const U x = wrappedCell(countFrom(static_cast<float>(firstColumn + i)),
                                    static_cast<float>(octave.cellsX));
            const F upper = valueAt(x, U(row.y0), octave, evolution);
            const F lower = valueAt(x, U(row.y1), octave, evolution);
            store(lerpOf(upper, lower, F(weight)) * F(amplitude), lines.line[0] + i);
        }
        for (int i = 0; i < columns; i += kLanes)
            store(loadAt(lines.line[0] + i + 1) - load(lines.line[0] + i), lines.line[1] + i);
    }

    template<class Columns>
    static HWY_INLINE F inRow(const LatticeLines<kLines>& lines, const Columns& columns, F f,
                              const LatticeRow&)
    {
        return columns.read(lines.line[0]) + columns.read(lines.line[1]) * fadeOf(f);
    }

    static HWY_INLINE F anywhere(const FractalOctave& octave, float evolution, F u, F v)
    {
        const F column = floorOf(u), row = floorOf(v);
        const float across = static_cast<float>(octave.cellsX), down = static_cast<float>(octave.cellsY);
        const U x0 = wrappedCell(column, across), x1 = wrappedCell(column + F(1.0f), across);
        const U y0 = wrappedCell(row, down), y1 = wrappedCell(row + F(1.0f), down);
        const F weight = fadeOf(u - column);
        const F upper =
            lerpOf(valueAt(x0, y0, octave, evolution), valueAt(x1, y0, octave, evolution), weight);
        const F lower =
            lerpOf(valueAt(x0, y1, octave, evolution), valueAt(x1, y1, octave, evolution), weight);
        return lerpOf(upper, lower, fadeOf(v - row));
    }

private:
    /// -kAmplitude to kAmplitude, evenly spread at any time: values go up and down between the two in a turn
    /// of evolution.
    static HWY_INLINE F valueAt(U x, U y, const FractalOctave& octave, float evolution)
    {
        const F angle = turningAngle(hashLattice(x, y, U(octave.seed)), evolution);
        return F(kAmplitude) - absOf(F(2.0f) - (angle - floorOf(angle)) * F(4.0f)) * F(kAmplitude);
    }
};

void valueNoiseRow(const RowJob& job)
{
    fractalRow<ValueBasis>(job);
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(valueNoiseRow)

static std::unique_ptr<State> prepareValueNoise(const Setup& setup)
{
    return prepareFractal(setup, {0x2545f491u, 1.0f, 1, 0.505f, 0.32f});
}

const NodeDeclaration valuenoiseNode{
    "valuenoise",
    "Value Noise",
    "Sources",
    "Evenly spread random values on a square lattice, blended with the smooth weights of K. Perlin's 2002 "
    "paper "
    "and added up over octaves. Softer and blockier than gradient noise. Its contrast does not change with "
    "the "
    "number of octaves.",
    ResultChannels::Grey,
    Chance::Seeded,
    {},
    fractalParameters(
        "Lattice cells across and down the picture; 0 down takes as many as keep the cells square.",
        "Moves the noise in place; comes back at every whole number."),
    prepareValueNoise,
    runvalueNoiseRow};

} // namespace vellor::nodes
#endif
