#include "orncommon/image/codec/freeimage/jpeg2000header.h"

#include <QtEndian>

#include <cmath>

namespace Orn::Image::Codec {

namespace {

constexpr int sizBytes = 43; ///< SOC, SIZ and its fields up to the depth of the first channel
constexpr int mostBoxes = 1000;
constexpr double tilePartBytes = 14; ///< SOT with its fields, and SOD

quint32 number32(QByteArray const& bytes, int at)
{
    return qFromBigEndian<quint32>(bytes.constData() + at);
}

/// Goes to the content of the first box with codestream data.
bool seekCodestream(QIODevice& device)
{
    for (int i = 0; i < mostBoxes; ++i) {
        qint64 const start = device.pos();
        QByteArray const box = device.read(8);
        if (box.size() != 8)
            return false;
        quint64 length = number32(box, 0);
        if (length == 1) { // the true one follows
            QByteArray const extended = device.read(8);
            if (extended.size() != 8)
                return false;
            length = qFromBigEndian<quint64>(extended.constData());
        }
        if (box.mid(4) == "jp2c")
            return true;
        if (length < 8 || length > quint64(device.size() - start) || !device.seek(start + qint64(length)))
            return false;
    }
    return false;
}

std::optional<StatedSize> sizeFromCodestream(QByteArray const& bytes)
{
    if (bytes.size() != sizBytes || !bytes.startsWith(QByteArray::fromHex("ff4fff51")))
        return {};
    auto const side = [&](int end, int offset) {
        return double(number32(bytes, end)) - number32(bytes, offset);
    };
    double const width = side(8, 16);
    double const height = side(12, 20);
    unsigned int const channels = qFromBigEndian<quint16>(bytes.constData() + 40);
    unsigned int const depth = (quint8(bytes[42]) & 0x7fu) + 1;
    double const tileWidth = number32(bytes, 24), tileHeight = number32(bytes, 28);
    if (width <= 0 || height <= 0 || tileWidth == 0 || tileHeight == 0)
        return {};
    double const tiles = std::floor(width / tileWidth) * std::floor(height / tileHeight);
    return StatedSize{width * height, channels * (depth > 8 ? 16u : 8u), tiles * tilePartBytes};
}

} // namespace

std::optional<StatedSize> jpeg2000Size(QIODevice& device)
{
    if (device.peek(2) != QByteArray::fromHex("ff4f") && !seekCodestream(device))
        return {};
    return sizeFromCodestream(device.read(sizBytes));
}

} // namespace Orn::Image::Codec
