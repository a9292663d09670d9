#pragma once

#include "orncommon/surfaces/surface.h"

#include <QByteArray>

namespace Zph::Applications::Player {

// The MD5 digest (RFC 1321) of a picture's pixels, 16 bytes: rows from top to bottom without padding,
// channels in the order red, green, blue, alpha, each in the picture's own depth with its low byte first. So
// it is the digest of a raw dump of the picture, on every machine. Empty for no picture.
QByteArray pixelHash(const Orn::Surfaces::Surface& picture);

} // namespace Zph::Applications::Player
