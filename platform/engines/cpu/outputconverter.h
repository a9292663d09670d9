#pragma once

#include "platform/engines/cpu/pixelformat.h"
#include "platform/nodes/node.h"

#include <cstddef>
#include <cstdint>

namespace vellor::cpu {

/// Bytes of a raw picture with `levels` mipmap levels, the first of them width x height, each next half as
/// wide and high.
std::size_t outputBytes(std::uint8_t format, int width, int height, int levels);

/// Levels that a picture of this size can have, 1 x 1 being the last.
int levelCount(int width, int height);

/// Writes rows y0 to y1 - 1 of planes as raw pixels without padding; `out` is where row 0 goes.
///
/// Integer formats: clamped to 0 to 1, NaN is 0, rounded to the nearest, halves up. Floats are written as
/// they are, halves rounded to the nearest. Grey fills red, green and blue, and alpha is 1; a format without
/// alpha has 1 in its fourth channel. Colour in a grey format is its luminance by Rec. 709. The sRGB bit
/// changes nothing: the author's numbers are codes already.
void convertRows(const nodes::ImageView& image, std::uint8_t format, int y0, int y1, void* out);

/// Rows y0 to y1 - 1 of the next smaller level: means of 2 x 2 pixels, of two where one side is 1 already.
void halveRows(const nodes::ImageView& image, int y0, int y1, const nodes::MutableImage& half);

} // namespace vellor::cpu
