#pragma once

#include <QByteArray>

#include <optional>

class QIODevice;

namespace Zph::Applications::Player {

// A record at the end of any bitmap, where decoders have stopped before: zero bytes up to a multiple of four,
// the text, its length as a little-endian 32-bit number, and "TMLV". The whole file is a multiple of four.

// The bytes to append to a file of `size` bytes.
QByteArray metadataTrailer(const QByteArray& document, qint64 size);

// The bytes of the longest text that is read, here or from a file of its own: what a byte array holds at
// most, less what reading needs beside it.
constexpr qint64 largestMetadata = 1 << 30;

// The text at the end of a readable file, or nothing. No more is read than the file holds.
std::optional<QByteArray> readMetadataTrailer(QIODevice& file);

} // namespace Zph::Applications::Player
