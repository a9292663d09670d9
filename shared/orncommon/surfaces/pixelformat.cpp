#include "orncommon/surfaces/pixelformat.h"

#include <array>

namespace Orn::Surfaces {

namespace {

struct Layout
{
    std::uint8_t channels = 0;
    std::uint8_t bits = 0;
    bool isFloat = false;
    bool blueFirst = false;
};

constexpr std::array<Layout, pixelFormatEnd> layouts = {{
    {},                    // no format
    {1, 8, false, false},  // L8
    {},                    // reserved
    {3, 8, false, false},  // RGB8
    {3, 8, false, true},   // BGR8
    {4, 8, false, false},  // RGBA8
    {4, 8, false, true},   // BGRA8
    {1, 16, false, false}, // L16
    {},                    // reserved
    {3, 16, false, false}, // RGB16
    {4, 16, false, false}, // RGBA16
    {1, 16, true, false},  // L16F
    {},                    // reserved
    {3, 16, true, false},  // RGB16F
    {4, 16, true, false},  // RGBA16F
    {1, 32, true, false},  // L32F
    {},                    // reserved
    {3, 32, true, false},  // RGB32F
    {4, 32, true, false},  // RGBA32F
}};

Layout layoutOf(PixelFormat format)
{
    return format < layouts.size() ? layouts[format] : Layout();
}

} // namespace

std::size_t getPixelSize(PixelFormat format)
{
    Layout const layout = layoutOf(format);
    return std::size_t(layout.channels) * layout.bits / 8;
}

unsigned int getChannelsCount(PixelFormat format)
{
    return layoutOf(format).channels;
}

unsigned int getBitsPerChannel(PixelFormat format)
{
    return layoutOf(format).bits;
}

bool isFloatFormat(PixelFormat format)
{
    return layoutOf(format).isFloat;
}

bool isBlueFirst(PixelFormat format)
{
    return layoutOf(format).blueFirst;
}

PixelFormat withChannels(PixelFormat format, unsigned int channels)
{
    Layout const wanted = layoutOf(format);
    for (std::uint32_t i = 1; i < layouts.size(); ++i) {
        Layout const& layout = layouts[i];
        if (layout.channels != 0 && layout.channels == channels && layout.bits == wanted.bits &&
            layout.isFloat == wanted.isFloat && !layout.blueFirst)
            return PixelFormat(i);
    }
    return PixelFormat_Invalid;
}

} // namespace Orn::Surfaces
