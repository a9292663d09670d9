#include "platform/nodes/dispatch.h"
#include "platform/nodes/fractal.h"
#include "platform/nodes/kinds.h"

// The simplices are triangles between rows of lattice points, every second row moved by half a cell. With a
// whole number of points in a row and an even number of rows this tiles; it is the skewed lattice turned, and
// stretched by a few per cent to fit. Distances are measured in the lattice before it is stretched, so noise
// is smooth in any case.
//
// A point's share ends at the height of a triangle. So only the two nearest points in the row above and in
// the row below can matter, and those three of them that have a triangle around the pixel do: no choice is
// made.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/sources/simplex.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

#include "platform/nodes/fractal-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

constexpr float kTriangle = 0.866025404f; // the height of a triangle of edge 1

struct SimplexBasis
{
    // Slope and value of the even row's gradients along the row of pixels, and of the odd row's.
    static constexpr int kLines = 4;
    static constexpr float kAmplitude = 12.0f; // 16 brings the extremes to 1, sums of octaves far beyond it

    static void fill(const FractalOctave& octave, float evolution, float amplitude, const LatticeRow& row,
                     int firstColumn, int columns, LatticeLines<kLines>& lines)
    {
        const bool evenFirst = (row.y0 & 1u) == 0;
        const float scale = kAmplitude * amplitude;
        const F evenDown(distanceDown(row, true) * scale), oddDown(distanceDown(row, false) * scale);
        const std::uint32_t even = evenFirst ? row.y0 : row.y1, odd = evenFirst ? row.y1 : row.y0;
        for (int i = 0; i < columns; i += kLanes) {
            const U x = wrappedCell(countFrom(static_cast<float>(firstColumn + i)),
                                    static_cast<float>(octave.cellsX));
            const SinCos evenGradient = gradientAt(x, U(even), octave, evolution);
            const SinCos oddGradient = gradientAt(x, U(odd), octave, evolution);
            store(evenGradient.cosine * F(scale), lines.line[0] + i);
            store(evenGradient.sine * evenDown, lines.line[1] + i);
            // Odd rows are read from one column before, which lies at the lines' beginning.
            storeAt(oddGradient.cosine * F(scale), lines.line[2] + 1 + i);
            storeAt(oddGradient.sine * oddDown, lines.line[3] + 1 + i);
        }
    }

    template<class Columns>
    static HWY_INLINE F inRow(const LatticeLines<kLines>& lines, const Columns& columns, F f,
                              const LatticeRow& row)
    {
        const float evenDown = distanceDown(row, true), oddDown = distanceDown(row, false);
        const F evenReach(kTriangle * kTriangle - evenDown * evenDown);
        const F oddReach(kTriangle * kTriangle - oddDown * oddDown);
        const auto share = [&](const Columns& at, int line, int step, F dx, F reach) {
            const F ramp = at.read(lines.line[line] + step) * dx + at.read(lines.line[line + 1] + step);
            return ramp * falloff(reach, dx);
        };
        const F even = share(columns, 0, 0, f, evenReach) + share(columns, 0, 1, f - F(1.0f), evenReach);
        // Points of odd rows lie in the middles of cells: a pixel in the left half has one more to its left.
        const M left = f < F(0.5f);
        const F g = choose(left, f + F(0.5f), f - F(0.5f));
        const Columns before = columns.moved(choose(left, U(0u), U(1u)));
        const F odd = share(before, 2, 0, g, oddReach) + share(before, 2, 1, g - F(1.0f), oddReach);
        return even + odd;
    }

    static HWY_INLINE F anywhere(const FractalOctave& octave, float evolution, F u, F v)
    {
        const F row = floorOf(v), half = row * F(0.5f);
        const F even = choose(floorOf(half) == half, row, row + F(1.0f));
        const F odd = choose(floorOf(half) == half, row + F(1.0f), row);
        return pointsOfRow(octave, evolution, u, (v - even) * F(kTriangle), even) +
               pointsOfRow(octave, evolution, u - F(0.5f), (v - odd) * F(kTriangle), odd);
    }

private:
    /// How far below the even or the odd one of its two lattice rows a row of pixels lies.
    static HWY_INLINE float distanceDown(const LatticeRow& row, bool even)
    {
        return ((row.y0 & 1u) == 0) == even ? row.f * kTriangle : (row.f - 1.0f) * kTriangle;
    }

    static HWY_INLINE F falloff(F reach, F dx)
    {
        const F t = maxOf(reach - dx * dx, F(0.0f));
        return (t * t) * (t * t);
    }

    /// The shares of the two nearest points of a row.
    static HWY_INLINE F pointsOfRow(const FractalOctave& octave, float evolution, F u, F dy, F row)
    {
        const F column = floorOf(u), dx = u - column, reach = F(kTriangle * kTriangle) - dy * dy;
        const float across = static_cast<float>(octave.cellsX);
        const U y = wrappedCell(row, static_cast<float>(octave.cellsY));
        const SinCos first = gradientAt(wrappedCell(column, across), y, octave, evolution);
        const SinCos second = gradientAt(wrappedCell(column + F(1.0f), across), y, octave, evolution);
        const F next = dx - F(1.0f);
        return ((first.cosine * dx + first.sine * dy) * falloff(reach, dx) +
                (second.cosine * next + second.sine * dy) * falloff(reach, next)) *
               F(kAmplitude);
    }

    static HWY_INLINE SinCos gradientAt(U x, U y, const FractalOctave& octave, float evolution)
    {
        return sinCosOfTurns(turningAngle(hashLattice(x, y, U(octave.seed)), evolution));
    }
};

void simplexRow(const RowJob& job)
{
    fractalRow<SimplexBasis>(job);
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(simplexRow)

static std::unique_ptr<State> prepareSimplex(const Setup& setup)
{
    return prepareFractal(setup, {0x1b873593u, 1.15470054f, 2, 0.46f, 0.35f});
}

const NodeDeclaration simplexNode{
    "simplex",
    "Simplex Noise",
    "Sources",
    "Gradient noise on a lattice of triangles after K. Perlin (2001) with the falloff of S. Gustavson "
    "(2005), "
    "added up over octaves; it has no preferred axes. The triangles stand in rows across the picture, which "
    "makes it tile. Its contrast does not change with the number of octaves.",
    ResultChannels::Grey,
    Chance::Seeded,
    {},
    fractalParameters(
        "Triangles' edges across and rows of triangles down the picture, rows rounded to an even "
        "number; 0 down takes as many as keep the triangles regular.",
        "Moves the noise in place; comes back at every whole number."),
    prepareSimplex,
    runsimplexRow};

} // namespace vellor::nodes
#endif
