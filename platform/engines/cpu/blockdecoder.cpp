#include "platform/engines/cpu/blockdecoder.h"

#include <vellor/engine.h>

#include <cstring>

namespace vellor::cpu {
namespace {

std::uint8_t family(std::uint8_t format)
{
    return format & static_cast<std::uint8_t>(~VELLOR_FORMAT_SRGB);
}

void expand565(unsigned colour, int* rgb)
{
    const unsigned r = colour >> 11, g = (colour >> 5) & 63u, b = colour & 31u;
    rgb[0] = static_cast<int>((r << 3) | (r >> 2));
    rgb[1] = static_cast<int>((g << 2) | (g >> 4));
    rgb[2] = static_cast<int>((b << 3) | (b >> 2));
}

/// The colour half of a block: two 5:6:5 ends and 2 bits a pixel. With `punchThrough`, ends in rising order
/// mean three colours and a transparent one.
void decodeColour(const std::uint8_t* block, bool punchThrough, std::uint8_t* pixels)
{
    const unsigned end0 = block[0] | (block[1] << 8), end1 = block[2] | (block[3] << 8);
    int palette[4][4] = {{0, 0, 0, 255}, {0, 0, 0, 255}, {0, 0, 0, 255}, {0, 0, 0, 255}};
    expand565(end0, palette[0]);
    expand565(end1, palette[1]);
    const bool three = punchThrough && end0 <= end1;
    for (int c = 0; c < 3; ++c) {
        const int p = palette[0][c], q = palette[1][c];
        palette[2][c] = three ? (p + q) / 2 : (2 * p + q) / 3;
        palette[3][c] = three ? 0 : (p + 2 * q) / 3;
    }
    if (three)
        palette[3][3] = 0;
    for (int i = 0; i < 16; ++i) {
        const int* colour = palette[(block[4 + i / 4] >> (2 * (i % 4))) & 3];
        for (int c = 0; c < 4; ++c)
            pixels[4 * i + c] = static_cast<std::uint8_t>(colour[c]);
    }
}

/// A channel of two ends and 3 bits a pixel, into every fourth byte of `pixels`.
void decodeRamp(const std::uint8_t* block, std::uint8_t* pixels)
{
    const int p = block[0], q = block[1];
    int ramp[8] = {p, q};
    for (int i = 1; i < 7; ++i) {
        if (p > q)
            ramp[i + 1] = ((7 - i) * p + i * q) / 7;
        else
            ramp[i + 1] = i < 5 ? ((5 - i) * p + i * q) / 5 : (i == 5 ? 0 : 255);
    }
    std::uint64_t bits = 0;
    std::memcpy(&bits, block + 2, 6);
    for (int i = 0; i < 16; ++i)
        pixels[4 * i] = static_cast<std::uint8_t>(ramp[(bits >> (3 * i)) & 7]);
}

} // namespace

std::size_t blockBytes(std::uint8_t format)
{
    switch (family(format)) {
    case VELLOR_FORMAT_BC1:
    case VELLOR_FORMAT_BC4:
        return 8;
    case VELLOR_FORMAT_BC2:
    case VELLOR_FORMAT_BC2_STRAIGHT:
    case VELLOR_FORMAT_BC3:
    case VELLOR_FORMAT_BC3_STRAIGHT:
    case VELLOR_FORMAT_BC5:
        return 16;
    default:
        return 0;
    }
}

int blockChannels(std::uint8_t format)
{
    return family(format) == VELLOR_FORMAT_BC4 ? 1 : 4;
}

void decodeBlock(std::uint8_t format, const std::uint8_t* block, std::uint8_t* pixels)
{
    switch (family(format)) {
    case VELLOR_FORMAT_BC1:
        decodeColour(block, true, pixels);
        break;
    case VELLOR_FORMAT_BC2:
    case VELLOR_FORMAT_BC2_STRAIGHT:
        decodeColour(block + 8, false, pixels);
        for (int i = 0; i < 16; ++i)
            pixels[4 * i + 3] = static_cast<std::uint8_t>(((block[i / 2] >> (4 * (i % 2))) & 15) * 17);
        break;
    case VELLOR_FORMAT_BC3:
    case VELLOR_FORMAT_BC3_STRAIGHT:
        decodeColour(block + 8, false, pixels);
        decodeRamp(block, pixels + 3);
        break;
    default: // BC4 and BC5
        for (int i = 0; i < 16; ++i)
            std::memcpy(pixels + 4 * i, "\0\0\0\xff", 4);
        decodeRamp(block, pixels);
        if (family(format) == VELLOR_FORMAT_BC5)
            decodeRamp(block + 8, pixels + 1);
        break;
    }
}

} // namespace vellor::cpu
