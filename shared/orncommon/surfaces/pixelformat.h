#pragma once

#include <cstddef>
#include <cstdint>

namespace Orn::Surfaces {

/// How one pixel lies in memory: interleaved components in the order of the name, native endianness.
/// `F` is floating point, 16 bits of it being IEEE binary16. Integers are unsigned and normalised.
/// The numbers are lasting, tables are indexed by them; 2, 8, 12 and 16 are reserved and supported nowhere.
enum PixelFormat : std::uint32_t
{
    PixelFormat_Invalid = 0,
    L8 = 1,
    RGB8 = 3,
    BGR8 = 4,
    RGBA8 = 5,
    BGRA8 = 6,
    L16 = 7,
    RGB16 = 9,
    RGBA16 = 10,
    L16F = 11,
    RGB16F = 13,
    RGBA16F = 14,
    L32F = 15,
    RGB32F = 17,
    RGBA32F = 18,
};

/// One more than the greatest number of a format.
constexpr std::uint32_t pixelFormatEnd = 19;

/// One channel of a pixel, whatever its place in memory.
enum class Channel : std::uint8_t
{
    Red,
    Green,
    Blue,
    Alpha,
};

/// Bytes per pixel; 0 for a number that is no format. So do the three below answer for such a number.
std::size_t getPixelSize(PixelFormat format);

/// 1, 3 or 4.
unsigned int getChannelsCount(PixelFormat format);

/// 8, 16 or 32.
unsigned int getBitsPerChannel(PixelFormat format);

bool isFloatFormat(PixelFormat format);

/// Whether blue comes first in memory.
bool isBlueFirst(PixelFormat format);

/// The red-first format of so many channels (1, 3 or 4) and the depth and kind of `format`.
PixelFormat withChannels(PixelFormat format, unsigned int channels);

} // namespace Orn::Surfaces
