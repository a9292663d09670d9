#pragma once

#include <QIODevice>

#include <optional>

namespace Orn::Image::Codec {

struct Jpeg2000Size
{
    double pixels = 0;
    unsigned int bitsPerPixel = 0; ///< with 8 or 16 bits for each channel
};

/// What the header of a JPEG 2000 codestream states, bare or within a JP2 file; nothing when there is none.
/// FreeImage can't read this header alone: it makes the whole picture at once. Moves the device.
/// Source: ISO/IEC 15444-1, Annex A.5.1 (SIZ) and Annex I (boxes).
std::optional<Jpeg2000Size> jpeg2000Size(QIODevice& device);

} // namespace Orn::Image::Codec
