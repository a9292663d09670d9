#pragma once

#include "orncommon/surfaces/pixelformat.h"

namespace Orn::Surfaces {

/// What a rectangle of pixels is.
struct SurfaceDescription
{
    /// Values of `alphaUse`.
    enum : std::uint32_t
    {
        AlphaNotStated = 0,
        AlphaCarried = 1, ///< the source image had an alpha channel
        AlphaAbsent = 2,  ///< it had none, whatever the format says
    };

    /// Bits of `flags`.
    enum : std::uint32_t
    {
        SignedComponents = 2, ///< the 16-bit integers are signed, 32767 being 1.0
    };

    SurfaceDescription() = default;
    SurfaceDescription(unsigned int w, unsigned int h, PixelFormat f) : width(w), height(h), format(f) {}

    /// Bytes of one row without its padding.
    std::uint64_t lineSize() const { return std::uint64_t(width) * getPixelSize(format); }

    std::uint32_t width = 0;  ///< pixels per row
    std::uint32_t height = 0; ///< rows
    std::uint64_t pitch = 0;  ///< bytes from one row to the next; 0 asks Surface to compute it
    PixelFormat format = PixelFormat_Invalid;
    std::uint32_t alphaUse = AlphaNotStated;
    std::uint32_t reserved = 0;
    std::uint32_t flags = 0;
};

} // namespace Orn::Surfaces
