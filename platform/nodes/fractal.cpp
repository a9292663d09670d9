#include "platform/nodes/fractal.h"

#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

#include <algorithm>

namespace vellor::nodes {
namespace {

constexpr int kMostCells = 4096, kFinestCells = 1 << 20;

enum Parameter
{
    kScale,
    kOctaves,
    kLacunarity,
    kGain,
    kMode,
    kEvolution,
    kWarp,
    kWarpScale,
    kWarpOctaves
};

struct Shape
{
    int octaves = 1, lacunarity = 2;
    float gain = 0.5f;
};

/// Lattice cells of a parameter; 0 down takes as many rows as keep the lattice regular.
CellCount latticeOf(const ParameterValue& parameter, const Setup& setup, const FractalTraits& traits)
{
    CellCount count;
    count.across = held(parameter.i[0], 1, kMostCells);
    const double regular =
        static_cast<double>(count.across) * setup.height / setup.width * traits.rowsPerCell;
    const double rows = parameter.i[1] > 0 ? parameter.i[1] : std::min(regular, double(kMostCells));
    const double multiple = traits.rowMultiple;
    count.down = traits.rowMultiple *
                 held(static_cast<int>(rows / multiple + 0.5), 1, kMostCells / traits.rowMultiple);
    return count;
}

/// The amplitudes of a sum: of all octaves, and of those too fine to be drawn.
struct Amplitudes
{
    float sum = 0.0f, squares = 0.0f, undrawn = 0.0f;
};

/// The octaves that pixels can show: two pixels for a cell is the finest, but for the first octave one.
Amplitudes addOctaves(FractalSum& sum, const Setup& setup, CellCount cells, const Shape& shape,
                      std::uint32_t seed)
{
    Amplitudes amplitudes;
    FractalOctave octave;
    octave.cellsX = cells.across;
    octave.cellsY = cells.down;
    for (int i = 0; i < shape.octaves; ++i) {
        octave.seed = seed;
        const bool drawn = i == 0 || (2 * octave.cellsX <= setup.width && 2 * octave.cellsY <= setup.height);
        if (drawn && octave.cellsX <= setup.width)
            sum.octaves.push_back(octave);
        else
            amplitudes.undrawn += octave.amplitude;
        amplitudes.sum += octave.amplitude;
        amplitudes.squares += octave.amplitude * octave.amplitude;
        octave.cellsX = std::min(octave.cellsX * shape.lacunarity, kFinestCells);
        octave.cellsY = std::min(octave.cellsY * shape.lacunarity, kFinestCells);
        octave.amplitude *= shape.gain;
        seed = scalar::nextHash(seed);
        octave.shiftX = scalar::unitOf(seed);
        octave.shiftY = scalar::unitOf(scalar::nextHash(seed ^ 0x55555555u));
    }
    return amplitudes;
}

void scaleBy(FractalSum& sum, float factor)
{
    for (FractalOctave& octave : sum.octaves)
        octave.amplitude *= factor;
}

/// Scales the sum so that its contrast does not hang on the number of octaves. Octaves too fine to be drawn
/// count by their mean, so that a picture has the same brightness at every size.
void normalise(FractalSum& sum, const Amplitudes& amplitudes, const FractalTraits& traits)
{
    switch (sum.mode) {
    case FractalMode::Fbm:
        scaleBy(sum, 0.5f / scalar::sqrtOf(amplitudes.squares));
        sum.offset = 0.5f;
        break;
    case FractalMode::Turbulence:
        scaleBy(sum, 1.0f / scalar::sqrtOf(amplitudes.squares));
        break;
    case FractalMode::Ridged:
        scaleBy(sum, 1.0f / amplitudes.sum);
        sum.offset = amplitudes.undrawn * traits.meanRidge / amplitudes.sum;
        break;
    case FractalMode::Billow:
        scaleBy(sum, 1.5f / amplitudes.sum);
        sum.offset = 1.5f * amplitudes.undrawn * traits.meanBillow / amplitudes.sum;
        break;
    }
}

/// The sum that moves the places where pixels look along one axis by up to about `pixels`.
FractalSum warpOf(const Setup& setup, const FractalTraits& traits, const FractalSum& noise, float pixels,
                  std::uint32_t seed)
{
    FractalSum warp;
    warp.evolution = noise.evolution;
    ParameterValue scale = setup.parameters[kWarpScale];
    if (scale.i[0] <= 0)
        scale = setup.parameters[kScale];
    const Shape shape{held(setup.parameters[kWarpOctaves].i[0], 1, 16), 2, 0.5f};
    const Amplitudes amplitudes = addOctaves(warp, setup, latticeOf(scale, setup, traits), shape, seed);
    scaleBy(warp, pixels / scalar::sqrtOf(amplitudes.squares));
    return warp;
}

} // namespace

std::unique_ptr<State> prepareFractal(const Setup& setup, const FractalTraits& traits)
{
    auto state = std::make_unique<FractalState>();
    FractalSum& noise = state->noise;
    const ParameterValue* p = setup.parameters;
    const CellCount cells = latticeOf(p[kScale], setup, traits);
    const Shape shape{held(p[kOctaves].i[0], 1, 16), held(p[kLacunarity].i[0], 2, 8),
                      held(p[kGain].f[0], 0.0f, 1.0f)};
    noise.mode = static_cast<FractalMode>(held(p[kMode].i[0], 0, 3));
    noise.evolution = held(p[kEvolution].f[0] - scalar::floorOf(p[kEvolution].f[0]), 0.0f, 1.0f);
    const std::uint32_t seed = scalar::mixBits(static_cast<std::uint32_t>(setup.seed) + traits.seed);
    normalise(noise, addOctaves(noise, setup, cells, shape, seed), traits);
    const float warp = held(p[kWarp].f[0], 0.0f, 16.0f);
    if (warp > 0.0f) {
        const float down = static_cast<float>(cells.down) / traits.rowsPerCell;
        state->warp[0] = warpOf(setup, traits, noise,
                                warp * static_cast<float>(setup.width) / static_cast<float>(cells.across),
                                scalar::nextHash(seed ^ 0x3c6ef372u));
        state->warp[1] = warpOf(setup, traits, noise, warp * static_cast<float>(setup.height) / down,
                                scalar::nextHash(seed ^ 0xa54ff53au));
    }
    return state;
}

std::vector<ParameterDeclaration> fractalParameters(const char* scaleText, const char* evolutionText)
{
    return {
        {"scale", ParameterType::Int2, {8, 0}, 1, 256, scaleText},
        {"octaves",
         ParameterType::Int,
         {6},
         1,
         16,
         "Layers of ever finer noise; those with cells of less than two pixels are left out."},
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
         "How octaves n are added: fbm n; ridged (1 - |n|)^2; billow |n|; turbulence is the absolute value "
         "of "
         "the whole sum.",
         {"fbm", "ridged", "billow", "turbulence"}},
        {"evolution", ParameterType::Float, {0.0}, 0, 1, evolutionText},
        {"warp",
         ParameterType::Float,
         {0.0},
         0,
         2,
         "How far the places are moved where pixels look, in cells, by two more sums of the same noise."},
        {"warpscale",
         ParameterType::Int2,
         {0, 0},
         0,
         256,
         "Cells of the moving noise across and down; 0 across takes those of scale, 0 down keeps cells "
         "regular."},
        {"warpoctaves", ParameterType::Int, {2}, 1, 16, "Layers of the moving noise."},
    };
}

} // namespace vellor::nodes
