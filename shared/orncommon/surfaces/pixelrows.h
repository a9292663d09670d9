#pragma once

#include "orncommon/surfaces/pixelformat.h"

namespace Orn::Surfaces {

/// Conversion of single rows, the stuff of which the operations on whole surfaces are made. As floats, a
/// pixel has as many channels as its format, always in the order red, green, blue, alpha.

/// Integers become value / maximum; halves are widened, floats taken as they stand. With `isSigned` the
/// 16-bit integers are read as signed, 32767 being 1.0 and nothing lying below -1.0.
void loadRow(PixelFormat format, void const* pixels, std::size_t count, float* out, bool isSigned = false);

/// Integers are clamped to 0..1 (NaN is 0), scaled and rounded to the nearest; halves are rounded by IEEE
/// rules.
void storeRow(PixelFormat format, float const* in, std::size_t count, void* pixels, bool isSigned = false);

/// From pixels of `from` channels to pixels of `to` channels. Colour turns to grey by the weights of Rec.
/// 709, 0.2126, 0.7152 and 0.0722; grey is spread over the three colours; a channel of alpha that was not
/// there gets `alpha`. The buffers do not overlap.
void reshapeRow(float const* in, unsigned int from, float* out, unsigned int to, std::size_t count,
                float alpha);

/// A direct way between two formats: exact, or the same to the last bit as the way over floats. A channel of
/// alpha that was not there gets `alpha`, 255 being opaque.
using DirectRow = void (*)(void const* source, std::size_t pixels, void* target, std::uint8_t alpha);

/// The direct way, or null where there is none.
DirectRow directRow(PixelFormat from, PixelFormat to);

} // namespace Orn::Surfaces
