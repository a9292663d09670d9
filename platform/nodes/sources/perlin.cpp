#include "platform/nodes/dispatch.h"
#include "platform/nodes/fractal.h"
#include "platform/nodes/kinds.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/sources/perlin.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

#include "platform/nodes/fractal-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

/// Between two lattice columns, noise in a row is the blend of two lines, s0 f + v0 and s1 (f - 1) + v1.
struct PerlinBasis
{
    static constexpr int kLines = 4; // s0, v0, and what their line lacks to the next column's: slope, value
    static constexpr float kAmplitude = 1.41421356f;

    static void fill(const FractalOctave& octave, float evolution, float amplitude, const LatticeRow& row,
                     int firstColumn, int columns, LatticeLines<kLines>& lines)
    {
        const float weight = fadeOf(row.f), scale = kAmplitude * amplitude;
        for (int i = 0; i < columns + 1; i += kLanes) {
            const U x = wrappedCell(countFrom(static_cast<float>(firstColumn + i)),
                                    static_cast<float>(octave.cellsX));
            const SinCos upper = gradientAt(x, U(row.y0), octave, evolution);
            const SinCos lower = gradientAt(x, U(row.y1), octave, evolution);
            store(lerpOf(upper.cosine, lower.cosine, F(weight)) * F(scale), lines.line[0] + i);
            store(lerpOf(upper.sine * F(row.f), lower.sine * F(row.f - 1.0f), F(weight)) * F(scale),
                  lines.line[1] + i);
        }
        for (int i = 0; i < columns; i += kLanes) {
            const F slope = loadAt(lines.line[0] + i + 1);
            store(slope - load(lines.line[0] + i), lines.line[2] + i);
            store(loadAt(lines.line[1] + i + 1) - slope - load(lines.line[1] + i), lines.line[3] + i);
        }
    }

    template<class Columns>
    static HWY_INLINE F inRow(const LatticeLines<kLines>& lines, const Columns& columns, F f,
                              const LatticeRow&)
    {
        const F own = columns.read(lines.line[0]) * f + columns.read(lines.line[1]);
        const F lack = columns.read(lines.line[2]) * f + columns.read(lines.line[3]);
        return own + lack * fadeOf(f);
    }

    static HWY_INLINE F anywhere(const FractalOctave& octave, float evolution, F u, F v)
    {
        const F column = floorOf(u), row = floorOf(v);
        const F fx = u - column, fy = v - row;
        const float across = static_cast<float>(octave.cellsX), down = static_cast<float>(octave.cellsY);
        const U x0 = wrappedCell(column, across), x1 = wrappedCell(column + F(1.0f), across);
        const U y0 = wrappedCell(row, down), y1 = wrappedCell(row + F(1.0f), down);
        const auto corner = [&](U x, U y, F dx, F dy) {
            const SinCos gradient = gradientAt(x, y, octave, evolution);
            return gradient.cosine * dx + gradient.sine * dy;
        };
        const F one(1.0f), weight = fadeOf(fx);
        const F upper = lerpOf(corner(x0, y0, fx, fy), corner(x1, y0, fx - one, fy), weight);
        const F lower = lerpOf(corner(x0, y1, fx, fy - one), corner(x1, y1, fx - one, fy - one), weight);
        return lerpOf(upper, lower, fadeOf(fy)) * F(kAmplitude);
    }

private:
    /// Gradients are unit vectors.
    static HWY_INLINE SinCos gradientAt(U x, U y, const FractalOctave& octave, float evolution)
    {
        return sinCosOfTurns(turningAngle(hashLattice(x, y, U(octave.seed)), evolution));
    }
};

void perlinRow(const RowJob& job)
{
    fractalRow<PerlinBasis>(job);
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(perlinRow)

static std::unique_ptr<State> preparePerlin(const Setup& setup)
{
    return prepareFractal(setup, {0x5bd1e995u, 1.0f, 1, 0.59f, 0.25f});
}

const NodeDeclaration perlinNode{
    "perlin",
    "Perlin Noise",
    "Sources",
    "Gradient noise on a square lattice after K. Perlin, with the smooth weights of his 2002 paper and unit "
    "gradients that turn with the evolution, added up over octaves. Its contrast does not change with the "
    "number of octaves.",
    ResultChannels::Grey,
    Chance::Seeded,
    {},
    fractalParameters(
        "Lattice cells across and down the picture; 0 down takes as many as keep the cells square.",
        "Moves the noise in place; comes back at every whole number."),
    preparePerlin,
    runperlinRow};

} // namespace vellor::nodes
#endif
