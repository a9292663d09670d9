#pragma once

#include "applications/player/description/packagemodel.h"
#include "applications/player/packing/packingtemplate.h"

#include <functional>

namespace Zph::Applications::Player {

// How tangent space normals lie in a picture, as the input $normalformat and the engine's normal maps count
// it, 0 to 15: bit 0 inverts x, bit 1 inverts y, bit 2 stores z as 0 to 1 and not as -1 to 1, bit 3 leaves z
// out; bits 2 and 3 together leave z out and keep y in alpha. So 0 is what Direct3D programs take, y down the
// picture, and 2 what OpenGL programs take.

// Whether an output holds normals: one of its usages ends with "normal".
bool holdsNormals(const PackageOutput& output);

// The value of an input at the time of the export.
using InputValueOf = std::function<InputValue(const PackageInput& input)>;

// The format of an output's normals:
//   - the value of $normalformat, of its graph or of the package, where that alters the output;
//   - else what the author says by the output's `usertag`, "opengl" or "directx";
//   - else 0, which is what normal maps have that say nothing.
int normalFormatOf(const PackageOutput& output, const PackageModel& package, const InputValueOf& valueOf);

// Brings a row of `count` pixels with `channels` floats each (0 to 1) from a format to 0 or 2, by the
// direction. What the format left out is put back: z as the height of a unit vector. Alpha stays, but is 1
// where it held y. Nothing happens to grey, nor for NormalDirection::OfPackage.
void turnNormals(float* pixels, unsigned channels, std::size_t count, int format, NormalDirection direction);

// Where the same is done by inverting channels alone, which: bit 0 for red, bit 1 for green. Else nothing.
std::optional<int> invertedNormals(int format, NormalDirection direction);

} // namespace Zph::Applications::Player
