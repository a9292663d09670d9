#pragma once

#include "orncommon/surfaces/pixelformat.h"

namespace Orn::ColorManagement {

/// The pixels that a transform takes: colour, interleaved, components in the order of the name.
enum class PixelFormat
{
    RGB8,
    BGR8,
    RGBA8,
    BGRA8,
    RGB16,
    RGBA16,
    RGB16F,
    RGBA16F,
    RGB32F,
    RGBA32F,
};

/// What the fourth channel has to do with the colours.
enum class AlphaMode
{
    Straight,      ///< nothing
    Premultiplied, ///< they are multiplied by it
};

Surfaces::PixelFormat toSurfaceFormat(PixelFormat format);

/// False for a surface format that no transform takes: the grey ones.
bool fromSurfaceFormat(Surfaces::PixelFormat format, PixelFormat& result);

} // namespace Orn::ColorManagement
