#include "orncommon/image/codec/freeimage/plainbmp.h"

#include <QtEndian>

namespace Orn::Image::Codec {

namespace {

constexpr int fileHeader = 14;
constexpr int shortHeader = 40;
constexpr int masks = 12; // red, green and blue, behind either header's first 40 bytes
constexpr int fileSizeAt = 2, pixelsAt = 10, headerSizeAt = 14, compressionAt = 30, pixelSizeAt = 34;
constexpr int palette = 256 * 4;
enum Compression : quint32
{
    RunLength8 = 1,
    RunLength4 = 2,
    BitFields = 3,
};

quint32 number(QByteArray const& bytes, int at)
{
    return qFromLittleEndian<quint32>(bytes.constData() + at);
}

void shortenHeader(QByteArray& bytes)
{
    int const size = int(number(bytes, headerSizeAt));
    int const kept = fileHeader + shortHeader + (number(bytes, compressionAt) == BitFields ? masks : 0);
    int const dropped = fileHeader + size - kept;
    bytes.remove(kept, dropped);
    qToLittleEndian(quint32(shortHeader), bytes.data() + headerSizeAt);
    quint32 const pixels = number(bytes, pixelsAt);
    if (pixels >= quint32(kept + dropped))
        qToLittleEndian(pixels - quint32(dropped), bytes.data() + pixelsAt);
}

/// Pairs of bytes: a count and a value; or 0 and 0 for the end of a row, 1 for the end of the picture, 2 with
/// a pair to follow, or a count of values that follow, filled up to a pair.
void dropLastRowEnd(QByteArray& bytes, bool isFourBits)
{
    auto const byte = [&](qint64 at) { return uchar(bytes.at(int(at))); };
    bool isAfterRowEnd = false;
    for (qint64 at = number(bytes, pixelsAt); at + 1 < bytes.size(); at += 2) {
        uchar const count = byte(at), code = byte(at + 1);
        if (count == 0 && code == 1) {
            if (isAfterRowEnd)
                bytes.remove(int(at) - 2, 2);
            return;
        }
        isAfterRowEnd = count == 0 && code == 0;
        if (count == 0 && code == 2)
            at += 2;
        else if (count == 0 && code > 2)
            at += ((isFourBits ? (code + 1) / 2 : code) + 1) / 2 * 2;
    }
}

bool writeNumber(QIODevice& device, qint64 at, qint64 value)
{
    quint32 const number = qToLittleEndian(quint32(value));
    return device.seek(at) &&
           device.write(reinterpret_cast<char const*>(&number), sizeof number) == sizeof number;
}

} // namespace

bool stateRunLengthSizes(QIODevice& device, qint64 start)
{
    qint64 const end = device.pos();
    return writeNumber(device, start + fileSizeAt, end - start) &&
           writeNumber(device, start + pixelSizeAt, end - start - fileHeader - shortHeader - palette) &&
           device.seek(end);
}

QByteArray plainBmp(QIODevice& device)
{
    QByteArray const start = device.peek(fileHeader + shortHeader);
    if (start.size() != fileHeader + shortHeader)
        return {};
    quint32 const size = number(start, headerSizeAt);
    quint32 const compression = number(start, compressionAt);
    bool const isLong = size == 52 || size == 56 || size == 108 || size == 124;
    bool const isPacked =
        (isLong || size == shortHeader) && (compression == RunLength8 || compression == RunLength4);
    if (!isLong && !isPacked)
        return {};
    qint64 const position = device.pos();
    QByteArray bytes = device.readAll();
    device.seek(position);
    if (isLong)
        shortenHeader(bytes);
    if (isPacked)
        dropLastRowEnd(bytes, compression == RunLength4);
    return bytes;
}

} // namespace Orn::Image::Codec
