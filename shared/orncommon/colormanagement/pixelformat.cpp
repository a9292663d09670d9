#include "orncommon/colormanagement/pixelformat.h"

#include <utility>

namespace Orn::ColorManagement {

namespace {

constexpr std::pair<PixelFormat, Surfaces::PixelFormat> formats[] = {
    {PixelFormat::RGB8, Surfaces::RGB8},     {PixelFormat::BGR8, Surfaces::BGR8},
    {PixelFormat::RGBA8, Surfaces::RGBA8},   {PixelFormat::BGRA8, Surfaces::BGRA8},
    {PixelFormat::RGB16, Surfaces::RGB16},   {PixelFormat::RGBA16, Surfaces::RGBA16},
    {PixelFormat::RGB16F, Surfaces::RGB16F}, {PixelFormat::RGBA16F, Surfaces::RGBA16F},
    {PixelFormat::RGB32F, Surfaces::RGB32F}, {PixelFormat::RGBA32F, Surfaces::RGBA32F},
};

} // namespace

Surfaces::PixelFormat toSurfaceFormat(PixelFormat format)
{
    for (auto const& [own, surface] : formats)
        if (own == format)
            return surface;
    return Surfaces::PixelFormat_Invalid;
}

bool fromSurfaceFormat(Surfaces::PixelFormat format, PixelFormat& result)
{
    for (auto const& [own, surface] : formats)
        if (surface == format) {
            result = own;
            return true;
        }
    return false;
}

} // namespace Orn::ColorManagement
