// Rows of fractal sums of lattice noise, for the instruction set that is being compiled. Included by kernels'
// files after simd.h.
//
// Pixels of a row share lattice cells, and all of them share their height in the cells. So a row first works
// out for each lattice column what does not hang on the place within the cell (the hashes, and all that
// depends on y): numbers that lie in lines, one for each column. A vector of neighbouring pixels then takes
// the numbers of its few columns out of a register.
//
// A basis is a kind of noise:
//
//   static constexpr int kLines;
//     Numbers for each column.
//   static void fill(const FractalOctave&, float evolution, float amplitude, const LatticeRow&,
//                    int firstColumn, int columns, LatticeLines<kLines>&);
//     Numbers for a row; the noise is multiplied with the amplitude.
//   template<class Columns> static F inRow(const LatticeLines<kLines>&, const Columns&, F f, const
//   LatticeRow&);
//     The noise at places f within the columns' cells.
//   static F anywhere(const FractalOctave&, float evolution, F u, F v);
//     The same noise, without amplitude, at any places in cells.

#if defined(VELLOR_NODES_FRACTAL_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLOR_NODES_FRACTAL_INL_H
#undef VELLOR_NODES_FRACTAL_INL_H
#else
#define VELLOR_NODES_FRACTAL_INL_H
#endif

#include "platform/nodes/fractal.h"
#include "platform/nodes/lattice-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {

/// Where a row of pixels lies between rows of a lattice: y and y + 1, wrapped, and the share in between.
struct LatticeRow
{
    LatticeRow(const FractalOctave& octave, int pixelRow, int height)
    {
        const float position = centreOf(pixelRow, height) * static_cast<float>(octave.cellsY) + octave.shiftY;
        const float row = scalar::floorOf(position);
        f = position - row;
        y0 = static_cast<std::uint32_t>(row) % static_cast<std::uint32_t>(octave.cellsY);
        y1 = (y0 + 1) % static_cast<std::uint32_t>(octave.cellsY);
    }

    std::uint32_t y0, y1;
    float f;
};

constexpr int kFractalChunk = 2048; // pixels; no more columns than that, but for the margins

template<int lines> struct LatticeLines
{
    alignas(64) float line[lines][kFractalChunk + 4 * 16];
};

template<FractalMode mode> HWY_INLINE F addedTo(F sum, F noise, F amplitude)
{
    if constexpr (mode == FractalMode::Ridged) {
        const F ridge = maxOf(F(1.0f) - absOf(noise), F(0.0f));
        return sum + ridge * ridge * amplitude;
    } else if constexpr (mode == FractalMode::Billow) {
        return sum + absOf(noise) * amplitude;
    } else {
        return sum + noise;
    }
}

/// Adds an octave to pixels of a row, or puts it on top of the offset.
template<class Basis, FractalMode mode, class Columns, bool first>
void addOctave(const FractalSum& sum, const FractalOctave& octave, const RowJob& job, int x, int count,
               float* sums)
{
    constexpr bool kLinear = mode == FractalMode::Fbm || mode == FractalMode::Turbulence;
    const float perPixel = static_cast<float>(octave.cellsX) / static_cast<float>(job.width);
    const auto columnOf = [&](int pixel) {
        return static_cast<int>((static_cast<float>(pixel) + 0.5f) * perPixel + octave.shiftX);
    };
    // One more before, and two behind, as a basis looks at the neighbours.
    const int from = columnOf(x) - 1, columns = columnOf(x + count + kLanes) + 3 - from;
    const LatticeRow row(octave, job.y, job.height);
    LatticeLines<Basis::kLines> lines;
    Basis::fill(octave, sum.evolution, kLinear ? octave.amplitude : 1.0f, row, from, columns, lines);
    F pixel = countFrom(static_cast<float>(x)) + F(0.5f);
    for (int i = 0; i < count; i += kLanes) {
        const F position = pixel * F(perPixel) + F(octave.shiftX); // not negative: truncation is the floor
        const U column = toInteger(position);
        const F noise = Basis::inRow(lines, Columns(column, from), position - toFloat(column), row);
        store(addedTo<mode>(first ? F(sum.offset) : load(sums + i), noise, F(octave.amplitude)), sums + i);
        pixel += F(static_cast<float>(kLanes));
    }
}

template<class Basis, FractalMode mode, bool first>
void addOctave(const FractalSum& sum, const FractalOctave& octave, const RowJob& job, int x, int count,
               float* sums)
{
    if (2 * octave.cellsX <= job.width)
        addOctave<Basis, mode, NearColumns, first>(sum, octave, job, x, count, sums);
    else
        addOctave<Basis, mode, FarColumns, first>(sum, octave, job, x, count, sums);
}

/// A sum over pixels x to x + count - 1 of a row, at most kFractalChunk; without the last step of turbulence.
template<class Basis, FractalMode mode>
void sumOctaves(const FractalSum& sum, const RowJob& job, int x, int count, float* sums)
{
    if (sum.octaves.empty())
        std::fill_n(sums, count, sum.offset);
    for (const FractalOctave& octave : sum.octaves) {
        if (&octave == sum.octaves.data())
            addOctave<Basis, mode, true>(sum, octave, job, x, count, sums);
        else
            addOctave<Basis, mode, false>(sum, octave, job, x, count, sums);
    }
}

/// The same where pixels look elsewhere.
template<class Basis, FractalMode mode>
void sumWarpedOctaves(const FractalState& state, const RowJob& job, int x, int count, float* sums)
{
    alignas(64) float across[kFractalChunk], down[kFractalChunk];
    sumOctaves<Basis, FractalMode::Fbm>(state.warp[0], job, x, count, across);
    sumOctaves<Basis, FractalMode::Fbm>(state.warp[1], job, x, count, down);
    constexpr bool kLinear = mode == FractalMode::Fbm || mode == FractalMode::Turbulence;
    for (int i = 0; i < count; i += kLanes) {
        const F pixelX = countFrom(static_cast<float>(x + i)) + F(0.5f) + load(across + i);
        const F pixelY = F(static_cast<float>(job.y) + 0.5f) + load(down + i);
        F result(state.noise.offset);
        for (const FractalOctave& octave : state.noise.octaves) {
            const float perPixelX = static_cast<float>(octave.cellsX) / static_cast<float>(job.width);
            const float perPixelY = static_cast<float>(octave.cellsY) / static_cast<float>(job.height);
            const F noise =
                Basis::anywhere(octave, state.noise.evolution, pixelX * F(perPixelX) + F(octave.shiftX),
                                pixelY * F(perPixelY) + F(octave.shiftY));
            const F amplitude(octave.amplitude);
            result = addedTo<mode>(result, kLinear ? noise * amplitude : noise, amplitude);
        }
        store(result, sums + i);
    }
}

template<class Basis, FractalMode mode> void fractalPixels(const RowJob& job)
{
    const auto& state = static_cast<const FractalState&>(*job.state);
    for (int done = 0; done < job.count; done += kFractalChunk) {
        const int x = job.x + done, count = std::min(kFractalChunk, job.count - done);
        float* result = job.result[0] + done;
        if (state.warp[0].octaves.empty())
            sumOctaves<Basis, mode>(state.noise, job, x, count, result);
        else
            sumWarpedOctaves<Basis, mode>(state, job, x, count, result);
        for (int i = 0; mode == FractalMode::Turbulence && i < count; i += kLanes)
            store(absOf(load(result + i)), result + i);
    }
}

/// A row of a kind of noise whose state is a FractalState.
template<class Basis> void fractalRow(const RowJob& job)
{
    switch (static_cast<const FractalState&>(*job.state).noise.mode) {
    case FractalMode::Fbm:
        return fractalPixels<Basis, FractalMode::Fbm>(job);
    case FractalMode::Ridged:
        return fractalPixels<Basis, FractalMode::Ridged>(job);
    case FractalMode::Billow:
        return fractalPixels<Basis, FractalMode::Billow>(job);
    case FractalMode::Turbulence:
        return fractalPixels<Basis, FractalMode::Turbulence>(job);
    }
}

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
