#include "orncommon/image/codec/freeimage/icocheck.h"

#include <QtEndian>

namespace Orn::Image::Codec {

namespace {

constexpr int firstEntryEnd = 6 + 16; // header, entry
constexpr int bitmapAt = 18;          // in these
constexpr int bitmapHeader = 40;

template<class Number> Number number(QByteArray const& bytes, int at)
{
    return qFromLittleEndian<Number>(bytes.constData() + at);
}

} // namespace

bool isIcoSound(QIODevice& device)
{
    qint64 const start = device.pos();
    QByteArray const entry = device.read(firstEntryEnd);
    if (entry.size() != firstEntryEnd || !device.seek(start + number<quint32>(entry, bitmapAt)))
        return false;
    QByteArray const header = device.read(bitmapHeader);
    if (header.startsWith("\x89PNG"))
        return true;
    if (header.size() != bitmapHeader)
        return false;
    qint64 const width = number<qint32>(header, 4);
    qint64 const height = number<qint32>(header, 8) / 2; // a mask is below the colours
    qint64 const depth = number<quint16>(header, 14);
    qint64 const paletteBytes = depth <= 8 ? qint64(4) << depth : 0;
    qint64 const left = device.size() - device.pos() - paletteBytes;
    return width > 0 && height > 0 && depth > 0 && depth <= 32 && left > 0 &&
           (width * depth + 31) / 32 * 4 <= left / height;
}

} // namespace Orn::Image::Codec
