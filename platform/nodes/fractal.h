#pragma once

// Fractal sums of lattice noise: what the kinds of noise that add up octaves share ahead of their pixels.
//
// A kind of noise is a function on a periodic lattice with values about -1 to 1. Its octaves lie on lattices
// that are ever finer by whole factors, so that all of them tile. fractal-inl.h evaluates them.

#include "platform/nodes/node.h"

namespace vellor::nodes {

enum class FractalMode
{
    Fbm,
    Ridged,
    Billow,
    Turbulence
};

struct FractalOctave
{
    int cellsX = 1, cellsY = 1;
    // Shift of the lattice in cells: gradient noise is 0 on lattice points, and those of all octaves must not
    // fall together.
    float shiftX = 0.0f, shiftY = 0.0f;
    std::uint32_t seed = 0;
    float amplitude = 1.0f;
};

/// A fractal sum: offset + the sum of amplitude times noise, by the mode.
struct FractalSum
{
    std::vector<FractalOctave> octaves;
    FractalMode mode = FractalMode::Fbm;
    float evolution = 0.0f; // turns, 0 to 1
    float offset = 0.0f;
};

struct FractalState : State
{
    FractalSum noise;
    /// How far the places where pixels look are moved, in pixels; without octaves they are not.
    std::array<FractalSum, 2> warp;
};

/// What a kind of noise brings into its sums.
struct FractalTraits
{
    std::uint32_t seed; // tells kinds apart that have the same seed
    float rowsPerCell;  // rows of the lattice in the height that a cell is wide
    int rowMultiple;    // the number of rows is a multiple of this
    float meanRidge;    // the mean of (1 - |n|)^2
    float meanBillow;   // the mean of |n|
};

/// Reads the parameters that fractalParameters declares.
std::unique_ptr<State> prepareFractal(const Setup& setup, const FractalTraits& traits);

/// scale, octaves, lacunarity, gain, mode, evolution, warp, warpscale, warpoctaves.
std::vector<ParameterDeclaration> fractalParameters(const char* scaleText, const char* evolutionText);

} // namespace vellor::nodes
