#pragma once

#include "orncommon/surfaces/surface.h"

namespace Orn::Surfaces {

/// Unless said otherwise: a function that gives a target gives false, and leaves the target empty where it
/// would have allocated it, when the source is empty, a format is none, sizes differ or there is no memory.
/// An empty target is allocated by the function, aligned to `surfaceAlignment`; one that has pixels must have
/// the size of the source and is written in place. Source and target are different surfaces with different
/// pixels.

/// What a conversion needs beside the two formats.
struct ConversionParameters
{
    /// Alpha of a format that gains such a channel, 255 being opaque.
    std::uint8_t alpha = 0;
};

/// Writes the source into a target that has pixels, in the target's format.
bool convertTo(Surface const& source, Surface& target, ConversionParameters const& parameters);

/// The same with the target's rows in the opposite order: its last is the source's first.
bool convertMirrored(Surface const& source, Surface& target, ConversionParameters const& parameters);

/// Allocates the target in `format` first, dropping what it held.
bool convertTo(Surface const& source, Surface& target, PixelFormat format,
               ConversionParameters const& parameters);

/// To the 8-bit format with the same channels in the same order.
bool convertTo8Bits(Surface const& source, Surface& target, ConversionParameters const& parameters);

/// Decodes the sRGB curve of the colour channels; alpha stays. The target has the source's format.
bool convertsRGBToLinearRGB(Surface const& source, Surface& target);

/// One channel as a single-channel surface of the same depth and kind. Grey answers to red, green and blue.
/// False for the alpha of a format without one.
bool extractChannel(Surface const& source, Surface& target, Channel channel);

/// Copies the pixels row by row, converting nothing. The target, if it has pixels, has the source's size and
/// format, and may have another pitch.
bool deepCopy(Surface const& source, Surface& target);

/// Allocates the target in the format of the opposite channel order (red first, blue first), so that the
/// picture is the same. A format that has one order alone is copied.
bool swizzleAlloc(Surface const& source, Surface& target);

/// Multiplies the colour channels by alpha; a format without alpha is copied.
bool premultiply(Surface const& source, Surface& target);

/// Pastes the source into a target that has pixels, its first pixel at (x, y), and clips what falls outside.
/// Converts to the target's format, opaque where that gains an alpha. True when nothing is left to paste,
/// too.
bool embedWithCrop(Surface const& source, Surface& target, int x, int y);

/// A new surface with the part of the rectangle that lies within the source; empty when none does.
Surface crop(Surface const& source, unsigned int x, unsigned int y, unsigned int width, unsigned int height);

/// Sets all pixels to a colour, 1.0 being full. A grey format gets the colour's luminance.
bool fill(Surface& surface, float r, float g, float b, float a);

} // namespace Orn::Surfaces
