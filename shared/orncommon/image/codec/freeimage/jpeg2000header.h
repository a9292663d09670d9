#pragma once

#include "orncommon/image/codec/freeimage/statedsize.h"

namespace Orn::Image::Codec {

/// What the header of a JPEG 2000 codestream states, bare or within a JP2 file; nothing when there is none.
/// FreeImage can't read this header alone: it makes the whole picture at once. Moves the device.
/// Source: ISO/IEC 15444-1, Annex A.5.1 (SIZ) and Annex I (boxes).
std::optional<StatedSize> jpeg2000Size(QIODevice& device);

} // namespace Orn::Image::Codec
