#pragma once

#include <QIODevice>

#include <optional>

namespace Orn::Image::Codec {

/// The number of pixels that the headers of an EXR file state; nothing when the headers are not whole within
/// the file. FreeImage does not tell OpenEXR that a file has ended, so that a damaged header must never reach
/// it. Moves the device.
std::optional<double> exrPixelCount(QIODevice& device);

} // namespace Orn::Image::Codec
