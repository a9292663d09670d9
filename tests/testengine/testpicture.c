#include "testpicture.h"

#include <string.h>

static uint32_t channels_of(uint32_t format)
{
    switch (format & VELLOR_FORMAT_LAYOUT_MASK) {
    case VELLOR_FORMAT_GRAYSCALE:
        return 1;
    case VELLOR_FORMAT_RGB:
        return 3;
    default:
        return 4;
    }
}

static uint32_t channel_bytes(uint32_t format)
{
    switch (format & VELLOR_FORMAT_DEPTH_MASK) {
    case VELLOR_FORMAT_8BITS:
        return 1;
    case VELLOR_FORMAT_32FLOAT:
        return 4;
    default:
        return 2;
    }
}

static uint32_t block_bytes(uint32_t format)
{
    format &= ~(uint32_t)VELLOR_FORMAT_SRGB;
    return format == VELLOR_FORMAT_BC1 || format == VELLOR_FORMAT_BC4 ? 8 : 16;
}

uint64_t picture_size(uint32_t width, uint32_t height, uint32_t format)
{
    switch (format & VELLOR_FORMAT_FAMILY_MASK) {
    case VELLOR_FORMAT_FAMILY_RAW:
        return (uint64_t)width * height * channels_of(format) * channel_bytes(format);
    case VELLOR_FORMAT_FAMILY_COMPRESSED:
        return (uint64_t)((width + 3) / 4) * ((height + 3) / 4) * block_bytes(format);
    default:
        return 64;
    }
}

static void fill_raw(char* at, uint32_t width, uint32_t height, uint32_t format)
{
    const uint32_t channels = channels_of(format), bytes = channel_bytes(format);
    const int isHalf = (format & VELLOR_FORMAT_DEPTH_MASK) == VELLOR_FORMAT_16FLOAT;
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x)
            for (uint32_t c = 0; c < channels; ++c, at += bytes) {
                const uint8_t byte = (uint8_t)(40 * c + 16 * x + y);
                const uint16_t word = isHalf ? (uint16_t)(0x3c00 - 0x400 * c) : (uint16_t)(257 * byte);
                const float real = byte / 255.0f;
                memcpy(at, bytes == 1 ? (const void*)&byte : bytes == 2 ? (const void*)&word : &real, bytes);
            }
}

static void fill_blocks(uint8_t* at, uint64_t size, uint32_t format)
{
    static const uint8_t red[8] = {0x00, 0xf8, 0x00, 0xf8}; /* 5-6-5 red twice, index 0 throughout */
    static const uint8_t level200[8] = {200, 200}, level100[8] = {100, 100}, level255[8] = {255, 255};
    static const uint8_t solid[8] = {255, 255, 255, 255, 255, 255, 255, 255};
    const uint8_t *first = red, *second = red;
    switch (format & ~(uint32_t)VELLOR_FORMAT_SRGB) {
    case VELLOR_FORMAT_BC2:
    case VELLOR_FORMAT_BC2_STRAIGHT:
        first = solid;
        break;
    case VELLOR_FORMAT_BC3:
    case VELLOR_FORMAT_BC3_STRAIGHT:
        first = level255;
        break;
    case VELLOR_FORMAT_BC4:
        first = level200;
        break;
    case VELLOR_FORMAT_BC5:
        first = level200;
        second = level100;
        break;
    }
    for (const uint32_t step = block_bytes(format); size >= step; size -= step, at += step) {
        memcpy(at, first, 8);
        if (step == 16)
            memcpy(at + 8, second, 8);
    }
}

void picture_fill(void* buffer, uint32_t width, uint32_t height, uint32_t format)
{
    const uint64_t size = picture_size(width, height, format);
    memset(buffer, 0, size);
    if ((format & VELLOR_FORMAT_FAMILY_MASK) == VELLOR_FORMAT_FAMILY_RAW)
        fill_raw(buffer, width, height, format);
    else if ((format & VELLOR_FORMAT_FAMILY_MASK) == VELLOR_FORMAT_FAMILY_COMPRESSED)
        fill_blocks(buffer, size, format);
}
