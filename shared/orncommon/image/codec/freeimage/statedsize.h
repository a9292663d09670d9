#pragma once

#include "orncommon/image/codec/freeimage/freeimagetypes.h"

#include <QIODevice>

#include <optional>

namespace Orn::Image::Codec {

struct StatedSize
{
    double pixels = 0;
    unsigned int bitsPerPixel = 0; ///< of the bitmap that the library makes of it, at the most
};

/// What the header of a file says, for the plug-ins that can't read a header alone: theirs allocate first.
/// Nothing for other plug-ins, and for headers that are not to be understood. Moves the device.
std::optional<StatedSize> statedSize(FreeImageFormat plugin, QIODevice& device);

} // namespace Orn::Image::Codec
