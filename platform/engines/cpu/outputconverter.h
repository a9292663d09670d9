#pragma once

#include "platform/engines/cpu/image.h"
#include "platform/engines/cpu/pixelformat.h"
#include "platform/engines/cpu/pixelkernels.h"
#include "platform/nodes/node.h"

#include <cstddef>
#include <cstdint>

namespace vellor::cpu {

/// Bytes of a raw picture with `levels` mipmap levels, the first of them width x height, each next half as
/// wide and high.
std::size_t outputBytes(std::uint8_t format, int width, int height, int levels);

/// Levels that a picture of this size can have, 1 x 1 being the last.
int levelCount(int width, int height);

/// Raw pixels in rows without padding that are written from planes, a piece of a row at a time.
///
/// Integer formats: clamped to 0 to 1, NaN is 0, rounded to the nearest, halves up. Floats are written as
/// they are, halves rounded to the nearest. Grey fills red, green and blue, and alpha is 1; a format without
/// alpha has 1 in its fourth channel. Colour in a grey format is its luminance by Rec. 709. The sRGB bit
/// changes nothing: the author's numbers are codes already.
class PixelWriter
{
public:
    /// `out` is where row 0 goes. Large pictures are written past the caches: whoever has written calls
    /// endStreaming before another thread may read.
    PixelWriter(std::uint8_t format, int width, int height, void* out);

    /// The `count` pixels from (x, y) on, at most kPixelBlock, from 1 or 4 planes, of which each pointer is
    /// to the first of these pixels, aligned to 64 bytes. Fetches `ahead` while it writes. Any thread; each
    /// with pixels of its own.
    void write(int x, int y, int count, const float* const* planes, int channels,
               const Ahead& ahead = {}) const;

private:
    RawFormat raw_;
    std::size_t width_;
    bool streams_;
    std::uint8_t* out_;
};

/// Rows y0 to y1 - 1 of planes, by a PixelWriter.
void convertRows(const nodes::ImageView& image, std::uint8_t format, int y0, int y1, void* out);

/// Rows y0 to y1 - 1 of a packed picture; `out` is where row 0 goes.
void copyPixels(const Image& image, int y0, int y1, void* out);

/// The kind of the plan's nodes that turn their operand into pixels, at the end of a chain.
const nodes::NodeDeclaration& packKind();

/// Rows y0 to y1 - 1 of the next smaller level: means of 2 x 2 pixels, of two where one side is 1 already.
void halveRows(const nodes::ImageView& image, int y0, int y1, const nodes::MutableImage& half);

} // namespace vellor::cpu
