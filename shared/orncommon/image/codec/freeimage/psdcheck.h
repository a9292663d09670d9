#pragma once

#include <QIODevice>

namespace Orn::Image::Codec {

/// Whether the rows of a PSD file's merged picture are all there, and unpack to just their bytes where they
/// are packed. FreeImage's reader trusts them: it writes beyond its memory where they don't. Moves the
/// device. Source: Adobe Photoshop File Formats Specification, "Image Data Section".
bool arePsdRowsSound(QIODevice& device);

} // namespace Orn::Image::Codec
