#pragma once

#include <vellor/engine.h>

#include <cstddef>
#include <cstdint>

namespace vellor::cpu {

/// The parts of a raw pixel format byte.
struct RawFormat
{
    enum class Depth
    {
        U8,
        U16,
        F16,
        F32
    };
    Depth depth = Depth::U8;
    int channels = 4;     // stored: 1, 3 or 4
    bool hasAlpha = true; // the fourth channel has a meaning

    static bool isRaw(std::uint8_t format)
    {
        return (format & 0x80) == 0 && (format & VELLOR_FORMAT_FAMILY_MASK) == VELLOR_FORMAT_FAMILY_RAW;
    }

    static RawFormat of(std::uint8_t format)
    {
        static constexpr int kChannels[4] = {4, 4, 3, 1};
        RawFormat raw;
        const int depth = format & VELLOR_FORMAT_DEPTH_MASK;
        raw.depth = depth == VELLOR_FORMAT_16BITS    ? Depth::U16
                    : depth == VELLOR_FORMAT_32FLOAT ? Depth::F32
                    : depth == VELLOR_FORMAT_16FLOAT ? Depth::F16
                                                     : Depth::U8;
        const int layout = format & VELLOR_FORMAT_LAYOUT_MASK;
        raw.channels = kChannels[layout >> 2];
        raw.hasAlpha = layout == VELLOR_FORMAT_RGBA;
        return raw;
    }

    std::size_t channelBytes() const { return depth == Depth::U8 ? 1 : depth == Depth::F32 ? 4 : 2; }
    std::size_t pixelBytes() const { return channelBytes() * static_cast<std::size_t>(channels); }
};

} // namespace vellor::cpu
