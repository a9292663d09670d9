#pragma once

#include <QByteArray>
#include <QIODevice>

namespace Orn::Image::Codec {

/// A BMP file that the library refuses, though others read it, in a form that it takes; empty for files that
/// need no change. The device stays where it is.
///
/// The longer headers, of versions 2 to 5, become the one of 40 bytes: all that they add are masks, kept
/// where they count, and colour spaces. In run-length data the last row loses its end where the end of the
/// picture follows.
QByteArray plainBmp(QIODevice& device);

/// States the sizes of a run-length coded 8-bit BMP file that was written from `start` up to the device's
/// position. The library leaves those of plain pixels there, and other programs refuse the file. False where
/// the device can't be written so.
bool stateRunLengthSizes(QIODevice& device, qint64 start);

} // namespace Orn::Image::Codec
