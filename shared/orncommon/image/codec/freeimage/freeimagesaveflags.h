#pragma once

#include "orncommon/image/codec/freeimage/freeimagetypes.h"

namespace Orn::Image::Codec {

class SurfaceCodecOptions;

/// The library's save flags for the values of a plug-in's options.
int saveFlags(FreeImageFormat plugin, SurfaceCodecOptions const& options);

} // namespace Orn::Image::Codec
