#pragma once

#include "orncommon/image/codec/freeimage/freeimagetypes.h"

#include <QIODevice>

#include <optional>

namespace Orn::Image::Codec {

struct StatedSize
{
    double pixels = 0;
    unsigned int bitsPerPixel = 0; ///< of the bitmap that the library makes of it, at the most
    double leastFileBytes = 0;     ///< of a file that holds all of the picture
};

/// What the header of a file says, for the plug-ins that can't read a header alone: theirs allocate first.
/// Those that lose their bitmap where the file ends too early say what it must hold. Nothing for other
/// plug-ins, and for headers that are not to be understood. Moves the device.
std::optional<StatedSize> statedSize(FreeImageFormat plugin, QIODevice& device);

} // namespace Orn::Image::Codec
