#pragma once

#include "orncommon/image/codec/freeimage/freeimageio.h"
#include "orncommon/image/codec/freeimage/freeimagetypes.h"

namespace Orn::Image::Codec {

/// Whether the size that the header states can be true for a file of this length, and whether the rows of the
/// formats whose plug-ins trust them are sound: asked before the library allocates any pixel. Warns where a
/// stated size is refused. Tells the file what to expect and leaves it at its start. May throw as the file
/// does.
bool hasCredibleSize(FreeImageFormat plugin, FreeImageDevice& file);

} // namespace Orn::Image::Codec
