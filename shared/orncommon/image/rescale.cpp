#include "orncommon/image/surfaceoperations.h"

#include <FreeImage.h>

#include <limits>
#include <utility>

namespace Orn::Image::Core {

namespace {

FREE_IMAGE_TYPE bitmapType(PixelFormat format)
{
    switch (format) {
    case Surfaces::L16:
        return FIT_UINT16;
    case Surfaces::RGB16:
        return FIT_RGB16;
    case Surfaces::RGBA16:
        return FIT_RGBA16;
    case Surfaces::L32F:
        return FIT_FLOAT;
    case Surfaces::RGB32F:
        return FIT_RGBF;
    case Surfaces::RGBA32F:
        return FIT_RGBAF;
    default:
        return Surfaces::getBitsPerChannel(format) == 8 ? FIT_BITMAP : FIT_UNKNOWN;
    }
}

bool isIntegral(unsigned int side)
{
    return side != 0 && side <= unsigned(std::numeric_limits<int>::max());
}

/// Resizes a surface of a format that the library knows; empty on failure. Row order and channel order do not
/// matter to a resize, so the bitmap is laid over the surface's own pixels.
Surface rescaled(Surface const& source, unsigned int width, unsigned int height, ScaleFilter filter)
{
    unsigned int const bits = unsigned(Surfaces::getPixelSize(source.format())) * 8;
    FIBITMAP* const wrapped =
        FreeImage_ConvertFromRawBitsEx(FALSE, const_cast<BYTE*>(source.data()), bitmapType(source.format()),
                                       int(source.width()), int(source.height()), int(source.pitch()), bits,
                                       FI_RGBA_RED_MASK, FI_RGBA_GREEN_MASK, FI_RGBA_BLUE_MASK, FALSE);
    if (wrapped == nullptr)
        return {};
    FIBITMAP* const result = FreeImage_Rescale(wrapped, int(width), int(height), FREE_IMAGE_FILTER(filter));
    FreeImage_Unload(wrapped);
    if (result == nullptr)
        return {};
    Surfaces::SurfaceDescription description = source.description();
    description.width = width;
    description.height = height;
    description.pitch = FreeImage_GetPitch(result);
    Surface made(FreeImage_GetBits(result), description, [result] { FreeImage_Unload(result); });
    return FreeImage_GetBPP(result) == bits ? std::move(made) : Surface();
}

} // namespace

bool rescaleCopy(Surface const& source, SharedSurface& target, unsigned int width, unsigned int height,
                 ScaleFilter filter)
{
    target.reset();
    if (source.isEmpty() || !isIntegral(width) || !isIntegral(height) ||
        source.pitch() > std::uint64_t(std::numeric_limits<int>::max()))
        return false;
    if (bitmapType(source.format()) != FIT_UNKNOWN) {
        target = makeShared(rescaled(source, width, height, filter));
        return !target.isNull();
    }
    // Halves take the way over floats.
    PixelFormat const wide =
        Surfaces::withChannels(Surfaces::L32F, Surfaces::getChannelsCount(source.format()));
    SharedSurface floats;
    if (!convertTo(source, floats, wide))
        return false;
    Surface const resized = rescaled(*floats, width, height, filter);
    return convertTo(resized, target, source.format());
}

} // namespace Orn::Image::Core
