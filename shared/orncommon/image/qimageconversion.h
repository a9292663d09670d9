#pragma once

#include "orncommon/image/surfaceoperations.h"

#include <QImage>

namespace Orn::Image::Core {

/// The surface as an 8-bit image for display, which owns its pixels. Values are clamped and never encoded.
/// Null for a null or empty surface, and with a warning for `RGB16` and `RGB16F`.
QImage surfaceToQImage(SharedSurface const& surface);

/// A copy of the image: grey, 8-bit and 16-bit images keep their format, everything else becomes `BGRA8`.
/// Null for a null image.
SharedSurface qImageToSurface(QImage const& image);

} // namespace Orn::Image::Core
