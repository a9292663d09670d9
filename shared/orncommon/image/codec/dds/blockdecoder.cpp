#include "orncommon/image/codec/dds/blockdecoder.h"

#include <cstring>

namespace Orn::Image::Codec {

namespace {

std::uint32_t read16(std::uint8_t const* bytes)
{
    return bytes[0] | std::uint32_t(bytes[1]) << 8;
}

std::uint32_t read32(std::uint8_t const* bytes)
{
    return read16(bytes) | read16(bytes + 2) << 16;
}

struct Colour
{
    std::uint8_t channels[4];
};

/// 5, 6 and 5 bits, widened by repeating their high bits.
Colour fromRgb565(std::uint32_t packed)
{
    std::uint32_t const r = packed >> 11 & 31;
    std::uint32_t const g = packed >> 5 & 63;
    std::uint32_t const b = packed & 31;
    return {
        {std::uint8_t(r << 3 | r >> 2), std::uint8_t(g << 2 | g >> 4), std::uint8_t(b << 3 | b >> 2), 255}};
}

/// (weightA * a + weightB * b) / (weightA + weightB), rounded to the nearest.
Colour mix(Colour const& a, unsigned int weightA, Colour const& b, unsigned int weightB)
{
    unsigned int const sum = weightA + weightB;
    Colour mixed = {{0, 0, 0, 255}};
    for (int c = 0; c < 3; ++c)
        mixed.channels[c] = std::uint8_t((weightA * a.channels[c] + weightB * b.channels[c] + sum / 2) / sum);
    return mixed;
}

/// `hasPunchThrough`: a first colour not greater than the second asks for three colours and transparent
/// black.
void decodeColours(std::uint8_t const* block, bool hasPunchThrough, std::uint8_t* pixels)
{
    std::uint32_t const first = read16(block);
    std::uint32_t const second = read16(block + 2);
    Colour colours[4] = {fromRgb565(first), fromRgb565(second), {}, {}};
    if (first > second || !hasPunchThrough) {
        colours[2] = mix(colours[0], 2, colours[1], 1);
        colours[3] = mix(colours[0], 1, colours[1], 2);
    } else {
        colours[2] = mix(colours[0], 1, colours[1], 1);
        colours[3] = {{0, 0, 0, 0}};
    }
    std::uint32_t indices = read32(block + 4);
    for (int i = 0; i < 16; ++i, indices >>= 2)
        std::memcpy(pixels + i * 4, colours[indices & 3].channels, 4);
}

/// Two ends and 3-bit indices: six values between them, or four and the extremes 0 and 255.
void decodeChannel(std::uint8_t const* block, std::uint8_t* values, std::size_t step)
{
    unsigned int const first = block[0];
    unsigned int const second = block[1];
    unsigned int const parts = first > second ? 7 : 5;
    std::uint8_t table[8] = {block[0], block[1], 0, 0, 0, 0, 0, 255};
    for (unsigned int i = 1; i < parts; ++i)
        table[i + 1] = std::uint8_t(((parts - i) * first + i * second + parts / 2) / parts);
    std::uint64_t indices = read32(block + 2) | std::uint64_t(read16(block + 6)) << 32;
    for (int i = 0; i < 16; ++i, indices >>= 3)
        values[std::size_t(i) * step] = table[indices & 7];
}

void decodeExplicitAlpha(std::uint8_t const* block, std::uint8_t* pixels)
{
    for (int i = 0; i < 16; ++i) {
        unsigned int const four = block[i / 2] >> (i % 2 * 4) & 15;
        pixels[i * 4 + 3] = std::uint8_t(four * 17);
    }
}

} // namespace

void decodeBlock(BlockFormat format, std::uint8_t const* block, std::uint8_t* pixels)
{
    switch (format) {
    case BlockFormat::Bc1:
        decodeColours(block, true, pixels);
        break;
    case BlockFormat::Bc2:
        decodeColours(block + 8, false, pixels);
        decodeExplicitAlpha(block, pixels);
        break;
    case BlockFormat::Bc3:
        decodeColours(block + 8, false, pixels);
        decodeChannel(block, pixels + 3, 4);
        break;
    case BlockFormat::Bc4:
        decodeChannel(block, pixels, 1);
        break;
    case BlockFormat::Bc5:
        for (int i = 0; i < 16; ++i) {
            pixels[i * 4 + 2] = 0;
            pixels[i * 4 + 3] = 255;
        }
        decodeChannel(block, pixels, 4);
        decodeChannel(block + 8, pixels + 1, 4);
        break;
    }
}

} // namespace Orn::Image::Codec
