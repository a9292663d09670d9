#include "platform/engines/cpu/outputconverter.h"

#include "platform/engines/cpu/pixelkernels.h"

#include <algorithm>
#include <cstring>

namespace vellor::cpu {
namespace {

/// The planes that a format is written from, for the pixels of one block.
class Block
{
public:
    explicit Block(const RawFormat& raw) : raw_(raw) { std::fill_n(ones_, kPixelBlock, 1.0f); }

    const float* const* planes(const nodes::ImageView& image, int x, int y, int count)
    {
        const float* row[4] = {};
        for (int c = 0; c < image.channels; ++c)
            row[c] = image.planes[c] + y * image.stride + x;
        const bool grey = image.channels == 1;
        for (int c = 0; c < 3; ++c)
            planes_[c] = row[grey ? 0 : c];
        planes_[3] = grey || !raw_.hasAlpha ? ones_ : row[3];
        if (raw_.channels == 1 && !grey) {
            luminance(row, count, luminance_);
            planes_[0] = luminance_;
        }
        return planes_;
    }

private:
    RawFormat raw_;
    const float* planes_[4] = {};
    alignas(64) float ones_[kPixelBlock];
    alignas(64) float luminance_[kPixelBlock];
};

int smaller(int size)
{
    return std::max(1, size / 2);
}

} // namespace

int levelCount(int width, int height)
{
    int levels = 1;
    for (int size = std::max(width, height); size > 1; size /= 2)
        ++levels;
    return levels;
}

std::size_t outputBytes(std::uint8_t format, int width, int height, int levels)
{
    std::size_t pixels = 0;
    for (int level = 0; level < levels; ++level, width = smaller(width), height = smaller(height))
        pixels += static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    return pixels * RawFormat::of(format).pixelBytes();
}

void convertRows(const nodes::ImageView& image, std::uint8_t format, int y0, int y1, void* out)
{
    const RawFormat raw = RawFormat::of(format);
    const std::size_t width = static_cast<std::size_t>(image.width);
    const bool streams = worthStreaming(width * static_cast<std::size_t>(image.height) * raw.pixelBytes());
    Block block(raw);
    alignas(64) std::uint8_t packed[kPixelBlock * 16 + kPixelSlack];
    auto* bytes = static_cast<std::uint8_t*>(out);
    for (int y = y0; y < y1; ++y) {
        for (int x = 0; x < image.width; x += kPixelBlock) {
            const int count = std::min(kPixelBlock, image.width - x);
            packPixels(raw, block.planes(image, x, y, count), count, packed);
            std::uint8_t* to = bytes + (static_cast<std::size_t>(y) * width + x) * raw.pixelBytes();
            const std::size_t size = static_cast<std::size_t>(count) * raw.pixelBytes();
            if (streams)
                streamBytes(to, packed, size);
            else
                std::memcpy(to, packed, size);
        }
    }
    endStreaming();
}

void halveRows(const nodes::ImageView& image, int y0, int y1, const nodes::MutableImage& half)
{
    for (int c = 0; c < image.channels; ++c) {
        for (int y = y0; y < y1; ++y) {
            const float* above = image.planes[c] + (image.height > 1 ? 2 * y : y) * image.stride;
            const float* below = image.height > 1 ? above + image.stride : above;
            float* out = half.planes[c] + y * half.stride;
            if (image.width > 1)
                halvePixels(above, below, half.width, out);
            else
                out[0] = (above[0] + below[0]) * 0.5f;
        }
    }
}

} // namespace vellor::cpu
