#pragma once

#include <QIODevice>

namespace Orn::Image::Codec {

/// Whether the first icon of an ICO file is a PNG file, or a bitmap of sides above 0 that is all there.
/// FreeImage's reader takes a negative side for one below 2^32 and writes beyond its memory. Moves the
/// device.
bool isIcoSound(QIODevice& device);

} // namespace Orn::Image::Codec
