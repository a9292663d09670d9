#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/scalar.h"

// A lattice row's gradients are the same for every pixel of a row of pixels, and so are the vertical weights.
// So a row first blends the two lattice rows above and below it into a line P x + Q for each lattice column;
// a pixel is then the horizontal blend of two lines. No pixel hashes anything.

#ifndef VELLOR_PERLIN_STATE
#define VELLOR_PERLIN_STATE
namespace vellor::nodes {
namespace {

enum class FractalMode
{
    Fbm,
    Ridged,
    Billow,
    Turbulence
};

struct PerlinOctave
{
    int cellsX = 1, cellsY = 1;
    // Shift of the lattice in cells: noise is 0 on lattice points, and those of all octaves must not fall
    // together.
    float shiftX = 0.0f, shiftY = 0.0f;
    std::uint32_t seed = 0;
    float amplitude = 1.0f;
};

struct PerlinState : State
{
    std::vector<PerlinOctave> octaves;
    FractalMode mode = FractalMode::Fbm;
    float evolution = 0.0f; // turns
    float scale = 1.0f, offset = 0.0f;
};

constexpr int kPerlinChunk = 256;

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/sources/perlin.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

HWY_INLINE F fadeOf(F t)
{
    return t * t * t * (t * (t * F(6.0f) - F(15.0f)) + F(10.0f));
}

/// Gradients are unit vectors. They turn by whole turns in a turn of evolution, half of them backwards, so
/// that time loops.
HWY_INLINE SinCos gradientAt(U x, U y, const PerlinOctave& octave, float evolution)
{
    const U hash = hashLattice(x, y, U(octave.seed));
    const F way = choose((hash & U(1u)) == U(1u), F(evolution), F(-evolution));
    return sinCosOfTurns(unitOf(hash) + way);
}

/// The lines of the lattice columns under some pixels of a row.
struct LatticeLines
{
    alignas(64) float slope[kPerlinChunk + 32];
    alignas(64) float value[kPerlinChunk + 32];
};

void fillLines(const PerlinOctave& octave, float evolution, float v, int firstColumn, int columns,
               LatticeLines& lines)
{
    const float position = v * static_cast<float>(octave.cellsY) + octave.shiftY;
    const float row = scalar::floorOf(position);
    const float f = position - row;
    const std::uint32_t y0 = static_cast<std::uint32_t>(row) % octave.cellsY;
    const std::uint32_t y1 = (y0 + 1) % octave.cellsY;
    const float weight = f * f * f * (f * (f * 6.0f - 15.0f) + 10.0f);
    const F width(static_cast<float>(octave.cellsX));
    for (int i = 0; i < columns; i += kLanes) {
        const F column = countFrom(static_cast<float>(firstColumn + i));
        const U x = toInteger(column - width * floorOf(column / width));
        const SinCos upper = gradientAt(x, U(y0), octave, evolution);
        const SinCos lower = gradientAt(x, U(y1), octave, evolution);
        store(lerpOf(upper.cosine, lower.cosine, F(weight)), lines.slope + i);
        store(lerpOf(upper.sine * F(f), lower.sine * F(f - 1.0f), F(weight)), lines.value + i);
    }
}

/// Adds an octave of pixels x to x + count - 1 to sums.
template<FractalMode mode>
void addOctave(const PerlinOctave& octave, float evolution, const RowJob& job, int x, int count, float* sums)
{
    const float perPixel = static_cast<float>(octave.cellsX) / static_cast<float>(job.width);
    const int first = static_cast<int>((static_cast<float>(x) + 0.5f) * perPixel + octave.shiftX);
    const int last =
        static_cast<int>((static_cast<float>(x + count + kLanes) + 0.5f) * perPixel + octave.shiftX);
    LatticeLines lines;
    fillLines(octave, evolution, centreOf(job.y, job.height), first, last - first + 2, lines);
    for (int i = 0; i < count; i += kLanes) {
        const F position = (countFrom(static_cast<float>(x + i)) + F(0.5f)) * F(perPixel) + F(octave.shiftX);
        const F cell = floorOf(position);
        const F f = position - cell;
        const U column = toInteger(cell) - U(static_cast<std::uint32_t>(first));
        const F left = gather(lines.slope, column) * f + gather(lines.value, column);
        const F right = gather(lines.slope + 1, column) * (f - F(1.0f)) + gather(lines.value + 1, column);
        F noise = lerpOf(left, right, fadeOf(f)) * F(1.41421356f);
        if constexpr (mode == FractalMode::Ridged) {
            noise = maxOf(F(1.0f) - absOf(noise), F(0.0f));
            noise = noise * noise;
        } else if constexpr (mode == FractalMode::Billow) {
            noise = absOf(noise);
        }
        store(load(sums + i) + F(octave.amplitude) * noise, sums + i);
    }
}

template<FractalMode mode> void perlinPixels(const RowJob& job)
{
    const auto& state = static_cast<const PerlinState&>(*job.state);
    for (int done = 0; done < job.count; done += kPerlinChunk) {
        const int count = std::min(kPerlinChunk, job.count - done);
        float* result = job.result[0] + done;
        for (int i = 0; i < count; i += kLanes)
            store(F(0.0f), result + i);
        for (const PerlinOctave& octave : state.octaves)
            addOctave<mode>(octave, state.evolution, job, job.x + done, count, result);
        for (int i = 0; i < count; i += kLanes) {
            const F sum = mode == FractalMode::Turbulence ? absOf(load(result + i)) : load(result + i);
            store(sum * F(state.scale) + F(state.offset), result + i);
        }
    }
}

void perlinRow(const RowJob& job)
{
    switch (static_cast<const PerlinState&>(*job.state).mode) {
    case FractalMode::Fbm:
        return perlinPixels<FractalMode::Fbm>(job);
    case FractalMode::Ridged:
        return perlinPixels<FractalMode::Ridged>(job);
    case FractalMode::Billow:
        return perlinPixels<FractalMode::Billow>(job);
    case FractalMode::Turbulence:
        return perlinPixels<FractalMode::Turbulence>(job);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(perlinRow)

/// Sets scale and offset so that the contrast does not hang on the number of octaves. Octaves too fine to be
/// drawn count by their mean, so that a picture has the same brightness at every size.
static void normalise(PerlinState& state, float sum, float squares, float undrawn)
{
    constexpr float kMeanRidge = 0.53f, kMeanBillow = 0.30f;
    switch (state.mode) {
    case FractalMode::Fbm:
        state.scale = 0.5f / scalar::sqrtOf(squares);
        state.offset = 0.5f;
        break;
    case FractalMode::Turbulence:
        state.scale = 1.0f / scalar::sqrtOf(squares);
        break;
    case FractalMode::Ridged:
        state.scale = 1.0f / sum;
        state.offset = undrawn * kMeanRidge / sum;
        break;
    case FractalMode::Billow:
        state.scale = 1.5f / sum;
        state.offset = 1.5f * undrawn * kMeanBillow / sum;
        break;
    }
}

static std::unique_ptr<State> preparePerlin(const Setup& setup)
{
    auto state = std::make_unique<PerlinState>();
    const ParameterValue* p = setup.parameters;
    const auto clampInt = [](int value, int low, int high) { return std::min(std::max(value, low), high); };
    PerlinOctave octave;
    octave.cellsX = clampInt(p[0].i[0], 1, 4096);
    const double square = static_cast<double>(octave.cellsX) * setup.height / setup.width;
    octave.cellsY = p[0].i[1] > 0 ? std::min(p[0].i[1], 4096) : std::max(1, static_cast<int>(square + 0.5));
    const int octaves = clampInt(p[1].i[0], 1, 16), lacunarity = clampInt(p[2].i[0], 2, 8);
    const float gain = std::min(std::max(p[3].f[0], 0.0f), 1.0f);
    state->mode = static_cast<FractalMode>(clampInt(p[4].i[0], 0, 3));
    state->evolution = p[5].f[0] - scalar::floorOf(p[5].f[0]);
    std::uint32_t seed = scalar::mixBits(static_cast<std::uint32_t>(setup.seed) + 0x5bd1e995u);
    float sum = 0.0f, squares = 0.0f, undrawn = 0.0f;
    for (int i = 0; i < octaves; ++i) {
        octave.seed = seed;
        // Two pixels for a cell is the finest that pixels can show.
        const bool drawn = i == 0 || (2 * octave.cellsX <= setup.width && 2 * octave.cellsY <= setup.height);
        if (drawn && octave.cellsX <= setup.width)
            state->octaves.push_back(octave);
        else
            undrawn += octave.amplitude;
        sum += octave.amplitude;
        squares += octave.amplitude * octave.amplitude;
        octave.cellsX = std::min(octave.cellsX * lacunarity, 1 << 20);
        octave.cellsY = std::min(octave.cellsY * lacunarity, 1 << 20);
        octave.amplitude *= gain;
        seed = scalar::nextHash(seed);
        octave.shiftX = scalar::unitOf(seed);
        octave.shiftY = scalar::unitOf(scalar::nextHash(seed ^ 0x55555555u));
    }
    normalise(*state, sum, squares, undrawn);
    return state;
}

const NodeDeclaration perlinNode{
    "perlin",
    "Perlin Noise",
    "Sources",
    "Gradient noise on a square lattice after K. Perlin, with the smooth weights of his 2002 paper and unit "
    "gradients that "
    "turn with the evolution, added up over octaves. Its contrast does not change with the number of "
    "octaves.",
    ResultChannels::Grey,
    Chance::Seeded,
    {},
    {{"scale",
      ParameterType::Int2,
      {8, 0},
      1,
      256,
      "Lattice cells across and down the picture; 0 down takes as many as keep the cells square."},
     {"octaves",
      ParameterType::Int,
      {6},
      1,
      16,
      "Layers of ever finer noise; those finer than the pixels are left out."},
     {"lacunarity",
      ParameterType::Int,
      {2},
      2,
      8,
      "How many times finer each octave is than the one before."},
     {"gain", ParameterType::Float, {0.5}, 0, 1, "How strong each octave is, compared to the one before."},
     {"mode",
      ParameterType::Choice,
      {0},
      0,
      3,
      "How octaves n are added: fbm n; ridged (1 - |n|)^2; billow |n|; turbulence is the absolute value of "
      "the whole sum.",
      {"fbm", "ridged", "billow", "turbulence"}},
     {"evolution",
      ParameterType::Float,
      {0.0},
      0,
      1,
      "Moves the noise in place; comes back at every whole number."}},
    preparePerlin,
    runperlinRow};

} // namespace vellor::nodes
#endif
