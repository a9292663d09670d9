#include "orncommon/image/codec/freeimage/pictcheck.h"

#include <QtEndian>

#include <algorithm>

namespace Orn::Image::Codec {

namespace {

using Size = std::optional<StatedSize>;

constexpr int ownerBytes = 512; // ahead of the picture, left to the program that made it
constexpr int mostOpcodes = 100000;
constexpr int rectangleBytes = 8;
constexpr int pixelMapBytes = 36;
constexpr int colourBytes = 8;
constexpr unsigned int mostColours = 256;
constexpr unsigned int longestSide = 16383; // rows of 32-bit pixels state their length in 16 bits

/// The file, number by number. Once it has ended, all that follows is 0 and `isWhole()` false.
class Numbers
{
public:
    explicit Numbers(QIODevice& device) : m_device(device), m_start(device.pos()) {}

    bool isWhole() const { return m_isWhole; }
    bool isOdd() const { return (m_device.pos() - m_start) % 2 != 0; }
    unsigned int byte() { return number<quint8>(); }
    unsigned int word() { return number<quint16>(); }
    quint32 longWord() { return number<quint32>(); }
    QByteArray bytes(qint64 count)
    {
        QByteArray const read = m_device.read(count);
        m_isWhole = m_isWhole && read.size() == count;
        return read;
    }
    void skip(qint64 count)
    {
        bool const isThere = count >= 0 && count <= m_device.size() - m_device.pos();
        m_isWhole = m_isWhole && isThere && m_device.seek(m_device.pos() + count);
    }

private:
    template<class Number> Number number()
    {
        QByteArray const read = bytes(sizeof(Number));
        return m_isWhole ? qFromBigEndian<Number>(read.constData()) : Number(0);
    }

    QIODevice& m_device;
    qint64 m_start;
    bool m_isWhole = true;
};

struct Rows
{
    unsigned int width = 0, height = 0;
    unsigned int depth = 0;
    unsigned int planes = 0;
    unsigned int statedBytes = 0; ///< of a row before it was packed
};

/// Sides of a rectangle: top, left, bottom, right.
void readBounds(Numbers& file, Rows& rows)
{
    unsigned int const top = file.word(), left = file.word(), bottom = file.word(), right = file.word();
    rows.height = bottom - top;
    rows.width = right - left;
}

void readPixelMap(Numbers& file, Rows& rows)
{
    QByteArray const map = file.bytes(pixelMapBytes);
    if (!file.isWhole())
        return;
    rows.depth = qFromBigEndian<quint16>(map.constData() + 18);
    rows.planes = qFromBigEndian<quint16>(map.constData() + 20) == 3 ? 3 : 4;
}

/// How many units of `unitBytes` a row unpacks to: behind a count above 127 follows one to be repeated 257 -
/// count times, behind another count + 1 of them; 128 means nothing.
unsigned int unitsOfRow(Numbers& file, unsigned int packedBytes, unsigned int unitBytes)
{
    unsigned int units = 0;
    for (unsigned int at = 0; at < packedBytes && file.isWhole();) {
        unsigned int const count = file.byte();
        unsigned int const follow = count == 128 ? 0 : count > 128 ? 1 : count + 1;
        units += count > 128 ? 257 - count : follow;
        file.skip(follow * unitBytes);
        at += 1 + follow * unitBytes;
    }
    return units;
}

bool areRowsSound(Numbers& file, Rows const& rows)
{
    if (rows.width - 1 >= longestSide || rows.height - 1 >= longestSide)
        return false;
    unsigned int const unitBytes = rows.depth == 16 ? 2 : 1;
    unsigned int const least = rows.width * (rows.depth == 32 ? rows.planes : 1);
    unsigned int most = least; // in units
    if (rows.depth == 32)
        most = rows.statedBytes;
    else if (rows.depth == 8)
        most = (rows.width + 3) / 4 * 4; // bytes of a bitmap's row
    else if (rows.depth != 16)
        return false;
    bool const isPacked = rows.statedBytes >= 8;
    if (!isPacked && (rows.depth == 16 ? least * unitBytes : rows.statedBytes) > most * unitBytes)
        return false;
    for (unsigned int y = 0; y < rows.height && file.isWhole(); ++y) {
        if (!isPacked && rows.depth == 16) {
            file.skip(rows.width * unitBytes);
            continue;
        }
        unsigned int const packedBytes = rows.statedBytes > 250 ? file.word() : file.byte();
        if (!isPacked) {
            file.skip(rows.statedBytes);
            continue;
        }
        unsigned int const units = unitsOfRow(file, packedBytes, unitBytes);
        if (units < least || units > most)
            return false;
    }
    return file.isWhole();
}

Size sizeOf(Numbers& file, Rows const& rows)
{
    if (!areRowsSound(file, rows))
        return {};
    return StatedSize{double(rows.width) * rows.height, rows.depth > 8 ? 32u : 8u};
}

/// Opcodes 0x98 and 0x99: with a table of colours, and a region to draw within.
Size sizeOfPixelMap(Numbers& file, bool hasRegion)
{
    constexpr unsigned int pixelMapFlag = 0x8000;
    Rows rows;
    unsigned int const rowBytes = file.word();
    if ((rowBytes & pixelMapFlag) == 0)
        return {}; // one bit a pixel
    readBounds(file, rows);
    readPixelMap(file, rows);
    rows.statedBytes = rows.depth > 8 ? rowBytes : rowBytes & ~pixelMapFlag;
    if (rows.statedBytes == 0)
        rows.statedBytes = rows.width;
    file.skip(6);
    unsigned int const colours = file.word() + 1;
    if (colours > mostColours)
        return {};
    file.skip(colours * colourBytes);
    file.skip(2 * rectangleBytes + 2);
    if (hasRegion)
        file.skip(qint64(file.word()) - 2);
    return sizeOf(file, rows);
}

/// Opcode 0x9A: colours themselves.
Size sizeOfDirectPixels(Numbers& file)
{
    Rows rows;
    file.skip(6);
    readBounds(file, rows);
    readPixelMap(file, rows);
    rows.statedBytes = rows.width * rows.depth / 8;
    file.skip(2 * rectangleBytes + 2);
    return sizeOf(file, rows);
}

/// Opcode 0x8200: somewhere within comes a JPEG file, whose frame header has the size.
Size sizeOfJpeg(Numbers& file)
{
    quint32 left = file.longWord();
    unsigned int last = 0, next = file.byte();
    while (file.isWhole() && left-- > 0 && !(last == 0xFF && next == 0xD8)) {
        last = next;
        next = file.byte();
    }
    while (file.isWhole() && left > 0) {
        if (file.byte() != 0xFF)
            return {};
        unsigned int const marker = file.byte(), length = file.word();
        if (marker >= 0xC0 && marker <= 0xC2) {
            file.skip(1);
            double const height = file.word();
            return StatedSize{height * file.word(), 24};
        }
        file.skip(qint64(length) - 2);
    }
    return {};
}

struct Span
{
    unsigned int last; ///< opcode
    int bytes;         ///< that follow each
};
constexpr int statedInWord = -1, notUnderstood = -2;
constexpr Span spans[] = {{0x00, 0},
                          {0x01, notUnderstood},
                          {0x02, 8},
                          {0x03, 2},
                          {0x04, 1},
                          {0x05, 2},
                          {0x07, 4},
                          {0x08, 2},
                          {0x0A, 8},
                          {0x0C, 4},
                          {0x0D, 2},
                          {0x0F, 4},
                          {0x10, 8},
                          {0x11, 1},
                          {0x14, notUnderstood},
                          {0x16, 2},
                          {0x19, 0},
                          {0x1B, 6},
                          {0x1C, 0},
                          {0x1D, 6},
                          {0x1E, 0},
                          {0x1F, 6},
                          {0x20, 8},
                          {0x21, 4},
                          {0x22, 6},
                          {0x23, 2},
                          {0x27, statedInWord},
                          {0x2B, notUnderstood},
                          {0x2F, statedInWord},
                          {0x37, 8},
                          {0x3F, 0},
                          {0x47, 8},
                          {0x4F, 0},
                          {0x57, 8},
                          {0x5F, 0},
                          {0x67, 12},
                          {0x6F, 4},
                          {0x77, notUnderstood},
                          {0x7F, 0},
                          {0x87, notUnderstood},
                          {0x8F, 0},
                          {0x91, notUnderstood},
                          {0x97, statedInWord},
                          {0x9A, notUnderstood},
                          {0x9F, statedInWord},
                          {0xA0, 2},
                          {0xA1, notUnderstood},
                          {0xAF, statedInWord},
                          {0xCF, 0}};

/// Goes past what belongs to an opcode; false for those that end the way to the picture.
bool skipOperands(Numbers& file, unsigned int opcode)
{
    if (opcode == 0x01 || (opcode >= 0x70 && opcode <= 0x77)) // a region or polygon, with its length
        file.skip(qint64(file.word()) - 2);
    else if (opcode == 0xA1) {
        file.skip(2);
        file.skip(file.word());
    } else if (opcode == 0x0C00)
        file.skip(24);
    else if (opcode <= 0xCF) {
        auto const* span = std::find_if(std::begin(spans), std::end(spans),
                                        [=](Span const& one) { return opcode <= one.last; });
        if (span->bytes == notUnderstood)
            return false;
        file.skip(span->bytes == statedInWord ? qint64(file.word()) : span->bytes);
    } else if (opcode < 0xFF)
        file.skip(file.longWord());
    else
        return opcode >= 0x8000 && opcode <= 0x80FF;
    return file.isWhole();
}

} // namespace

Size pictSize(QIODevice& device)
{
    Numbers file(device);
    file.skip(ownerBytes + 2 + rectangleBytes);
    constexpr quint32 versionTwo = 0x001102FF;
    if (file.longWord() != versionTwo)
        return {};
    for (int i = 0; i < mostOpcodes && file.isWhole(); ++i) {
        if (file.isOdd())
            file.skip(1);
        unsigned int const opcode = file.word();
        if (opcode == 0x90 || opcode == 0x91 || opcode == 0x98 || opcode == 0x99)
            return sizeOfPixelMap(file, opcode % 2 != 0);
        if (opcode == 0x9A)
            return sizeOfDirectPixels(file);
        if (opcode == 0x8200)
            return sizeOfJpeg(file);
        if (!skipOperands(file, opcode))
            return {};
    }
    return {};
}

} // namespace Orn::Image::Codec
