#include "platform/engines/cpu/outputconverter.h"

#include "platform/engines/cpu/halffloat.h"

#include <algorithm>
#include <cstring>

namespace vellor::cpu {
namespace {

/// Pixels that are converted at once, so that the planes of a luminance or of missing channels stay in the
/// first cache.
constexpr int kBlock = 512;

struct ToU8
{
    using Word = std::uint8_t;
    static std::uint32_t of(float v)
    {
        v = v > 0.0f ? v : 0.0f; // NaN compares false
        v = v < 1.0f ? v : 1.0f;
        return static_cast<std::uint32_t>(static_cast<std::int32_t>(v * 255.0f + 0.5f));
    }
};

struct ToU16
{
    using Word = std::uint16_t;
    static std::uint32_t of(float v)
    {
        v = v > 0.0f ? v : 0.0f;
        v = v < 1.0f ? v : 1.0f;
        return static_cast<std::uint32_t>(static_cast<std::int32_t>(v * 65535.0f + 0.5f));
    }
};

struct ToF16
{
    using Word = std::uint16_t;
    static std::uint32_t of(float v) { return halfFromFloat(v); }
};

struct ToF32
{
    using Word = float;
    static float of(float v) { return v; }
};

using Planes = const float* const*;

template<class To> void writeGrey(Planes in, int count, void* out)
{
    auto* to = static_cast<typename To::Word*>(out);
    const float* grey = in[0];
    for (int x = 0; x < count; ++x)
        to[x] = static_cast<typename To::Word>(To::of(grey[x]));
}

template<class To> void writeRgb(Planes in, int count, void* out)
{
    auto* to = static_cast<typename To::Word*>(out);
    for (int x = 0; x < count; ++x)
        for (int c = 0; c < 3; ++c)
            to[3 * x + c] = static_cast<typename To::Word>(To::of(in[c][x]));
}

/// Whole pixels are put together in registers: the loops below are the ones that compilers turn into vectors.
template<class To> void writeRgba(Planes in, int count, void* out);

template<> void writeRgba<ToU8>(Planes in, int count, void* out)
{
    const float *r = in[0], *g = in[1], *b = in[2], *a = in[3];
    auto* to = static_cast<std::uint32_t*>(out);
    for (int x = 0; x < count; ++x)
        to[x] = ToU8::of(r[x]) | ToU8::of(g[x]) << 8 | ToU8::of(b[x]) << 16 | ToU8::of(a[x]) << 24;
}

template<class To> void writeRgbaWords(Planes in, int count, void* out)
{
    const float *r = in[0], *g = in[1], *b = in[2], *a = in[3];
    auto* to = static_cast<std::uint32_t*>(out);
    for (int x = 0; x < count; ++x) {
        to[2 * x] = To::of(r[x]) | To::of(g[x]) << 16;
        to[2 * x + 1] = To::of(b[x]) | To::of(a[x]) << 16;
    }
}

template<> void writeRgba<ToU16>(Planes in, int count, void* out)
{
    writeRgbaWords<ToU16>(in, count, out);
}

template<> void writeRgba<ToF16>(Planes in, int count, void* out)
{
    writeRgbaWords<ToF16>(in, count, out);
}

template<> void writeRgba<ToF32>(Planes in, int count, void* out)
{
    const float *r = in[0], *g = in[1], *b = in[2], *a = in[3];
    auto* to = static_cast<float*>(out);
    for (int x = 0; x < count; ++x) {
        to[4 * x] = r[x];
        to[4 * x + 1] = g[x];
        to[4 * x + 2] = b[x];
        to[4 * x + 3] = a[x];
    }
}

using Writer = void (*)(Planes, int, void*);

Writer writerOf(const RawFormat& raw)
{
    static constexpr Writer kWriters[4][3] = {
        {writeGrey<ToU8>, writeRgb<ToU8>, writeRgba<ToU8>},
        {writeGrey<ToU16>, writeRgb<ToU16>, writeRgba<ToU16>},
        {writeGrey<ToF16>, writeRgb<ToF16>, writeRgba<ToF16>},
        {writeGrey<ToF32>, writeRgb<ToF32>, writeRgba<ToF32>},
    };
    return kWriters[static_cast<int>(raw.depth)][raw.channels == 1 ? 0 : raw.channels - 2];
}

/// The up to four planes that a format is written from, for the pixels of one block.
class Block
{
public:
    explicit Block(const RawFormat& raw) : raw_(raw) { std::fill_n(ones_, kBlock, 1.0f); }

    Planes planes(const nodes::ImageView& image, int x, int y, int count)
    {
        const float* row[4] = {};
        for (int c = 0; c < image.channels; ++c)
            row[c] = image.planes[c] + y * image.stride + x;
        const bool grey = image.channels == 1;
        for (int c = 0; c < 3; ++c)
            planes_[c] = row[grey ? 0 : c];
        planes_[3] = grey || !raw_.hasAlpha ? ones_ : row[3];
        if (raw_.channels == 1 && !grey) {
            for (int i = 0; i < count; ++i)
                luminance_[i] = 0.2126f * row[0][i] + 0.7152f * row[1][i] + 0.0722f * row[2][i];
            planes_[0] = luminance_;
        }
        return planes_;
    }

private:
    RawFormat raw_;
    const float* planes_[4] = {};
    float ones_[kBlock];
    float luminance_[kBlock];
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
    const Writer write = writerOf(raw);
    Block block(raw);
    auto* bytes = static_cast<std::uint8_t*>(out);
    for (int y = y0; y < y1; ++y) {
        for (int x = 0; x < image.width; x += kBlock) {
            const int count = std::min(kBlock, image.width - x);
            const std::size_t pixel = static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) + x;
            write(block.planes(image, x, y, count), count, bytes + pixel * raw.pixelBytes());
        }
    }
}

void halveRows(const nodes::ImageView& image, int y0, int y1, const nodes::MutableImage& half)
{
    const int right = image.width > 1 ? 1 : 0;
    const std::ptrdiff_t below = image.height > 1 ? image.stride : 0;
    for (int c = 0; c < image.channels; ++c) {
        for (int y = y0; y < y1; ++y) {
            const float* in = image.planes[c] + (image.height > 1 ? 2 * y : y) * image.stride;
            float* out = half.planes[c] + y * half.stride;
            for (int x = 0; x < half.width; ++x) {
                const float* at = in + (right ? 2 * x : x);
                out[x] = ((at[0] + at[right]) + (at[below] + at[below + right])) * 0.25f;
            }
        }
    }
}

} // namespace vellor::cpu
