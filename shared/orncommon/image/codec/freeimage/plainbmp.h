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

} // namespace Orn::Image::Codec
