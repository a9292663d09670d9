#include "platform/engines/cpu/outputconverter.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace vellor::cpu {
namespace {

alignas(64) constexpr auto kOnes = [] {
    std::array<float, kPixelBlock> ones{};
    for (float& one : ones)
        one = 1.0f;
    return ones;
}();

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

PixelWriter::PixelWriter(std::uint8_t format, int width, int height, void* out)
    : raw_(RawFormat::of(format)), width_(static_cast<std::size_t>(width)),
      streams_(worthStreaming(outputBytes(format, width, height, 1))), out_(static_cast<std::uint8_t*>(out))
{
}

void PixelWriter::write(int x, int y, int count, const float* const* planes, int channels,
                        const Ahead& ahead) const
{
    alignas(64) float grey[kPixelBlock];
    alignas(64) std::uint8_t packed[kPixelBlock * 16 + kPixelSlack];
    const float* stored[4] = {planes[0], planes[0], planes[0], kOnes.data()};
    if (channels > 1) {
        std::copy_n(planes, raw_.hasAlpha ? 4 : 3, stored);
        if (raw_.channels == 1) {
            luminance(planes, count, grey);
            stored[0] = grey;
        }
    }
    const std::size_t pixel = raw_.pixelBytes(), size = static_cast<std::size_t>(count) * pixel;
    std::uint8_t* to = out_ + (static_cast<std::size_t>(y) * width_ + static_cast<std::size_t>(x)) * pixel;
    if (streams_ && ahead.count == 0 && streamPixels(raw_, stored, count, to))
        return;
    packPixels(raw_, stored, count, packed);
    if (streams_)
        return streamBytes(to, packed, size, ahead);
    fetch(ahead);
    std::memcpy(to, packed, size);
}

void convertRows(const nodes::ImageView& image, std::uint8_t format, int y0, int y1, void* out)
{
    const PixelWriter writer(format, image.width, image.height, out);
    for (int y = y0; y < y1; ++y) {
        for (int x = 0; x < image.width; x += kPixelBlock) {
            const float* planes[nodes::kMaxChannels] = {};
            for (int c = 0; c < image.channels; ++c)
                planes[c] = image.planes[c] + y * image.stride + x;
            writer.write(x, y, std::min(kPixelBlock, image.width - x), planes, image.channels);
        }
    }
    endStreaming();
}

void copyPixels(const Image& image, int y0, int y1, void* out)
{
    const std::size_t row = image.byteSize() / static_cast<std::size_t>(image.height());
    const std::size_t at = row * static_cast<std::size_t>(y0), size = row * static_cast<std::size_t>(y1 - y0);
    auto* to = static_cast<std::uint8_t*>(out) + at;
    if (worthStreaming(image.byteSize()))
        streamBytes(to, image.bytes() + at, size);
    else
        std::memcpy(to, image.bytes() + at, size);
    endStreaming();
}

const nodes::NodeDeclaration& packKind()
{
    static const nodes::NodeDeclaration kind = [] {
        nodes::NodeDeclaration pack{};
        pack.name = "engine.pack";
        pack.label = pack.category = pack.text = "";
        return pack;
    }();
    return kind;
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
