#pragma once

#include <QIODevice>

namespace Orn::Image::Codec {

/// Whether the packed rows of a PSD file's merged picture unpack to just the bytes of their rows. FreeImage's
/// reader trusts them and writes beyond its memory where they don't. True for rows that aren't packed. Moves
/// the device.
/// Source: Adobe Photoshop File Formats Specification, "Image Data Section".
bool arePsdRowsSound(QIODevice& device);

} // namespace Orn::Image::Codec
