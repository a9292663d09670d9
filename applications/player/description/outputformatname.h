#pragma once

#include <QString>

namespace Zph::Applications::Player {

// The words for an engine pixel format byte, such as "RGBA-8bits-sRGB" or "BC1/DXT1"; "Unknown" for a code
// outside the table, with the sRGB mark kept.
QString outputFormatName(quint8 pixelFormat);

} // namespace Zph::Applications::Player
