#pragma once

#include "orncommon/image/codec/freeimage/statedsize.h"

namespace Orn::Image::Codec {

/// The size of the picture in a PICT file; nothing where FreeImage's reader is not to be trusted with it.
/// That one takes every number of the file at its word and writes beyond its memory where a row, a table of
/// colours or a pattern is longer than it should be, and it does not understand rows of fewer than 8 bits a
/// pixel. So only files are let through whose instructions are understood here up to the picture, and whose
/// rows unpack to what their width says. Moves the device. Source: Inside Macintosh, Imaging With QuickDraw,
/// Appendix A, "Picture Opcodes".
std::optional<StatedSize> pictSize(QIODevice& device);

} // namespace Orn::Image::Codec
