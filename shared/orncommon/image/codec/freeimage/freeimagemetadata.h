#pragma once

#include "orncommon/image/codec/freeimage/freeimagetypes.h"

namespace Orn::Image::Codec {

class SurfaceCodecOptions;

/// What a file carries beside its pixels: the colour profile and the description, read into the options' keys
/// "ICCProfile" and "Description".
void readMetadata(FIBITMAP* bitmap, SurfaceCodecOptions& options);

/// Gives the bitmap the two, its resolution from "physical_size" (72 dots per inch without it) and an XMP
/// packet.
void writeMetadata(FIBITMAP* bitmap, SurfaceCodecOptions const& options);

} // namespace Orn::Image::Codec
