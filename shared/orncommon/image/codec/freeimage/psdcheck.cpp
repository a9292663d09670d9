#include "orncommon/image/codec/freeimage/psdcheck.h"

#include <QtEndian>

#include <algorithm>
#include <optional>

namespace Orn::Image::Codec {

namespace {

constexpr int headerBytes = 26;
constexpr quint64 mostRows = quint64(56) * 300000; // channels and rows that the format allows
constexpr quint64 mostChannelsRead = 4;            // the library leaves the others

template<class Number> std::optional<Number> readNumber(QIODevice& device)
{
    QByteArray const bytes = device.read(sizeof(Number));
    if (bytes.size() != int(sizeof(Number)))
        return {};
    return qFromBigEndian<Number>(bytes.constData());
}

/// A section is its length and as many bytes.
bool skipSection(QIODevice& device, bool isLong)
{
    auto const high = isLong ? readNumber<quint32>(device) : std::optional<quint32>(0);
    auto const length = readNumber<quint32>(device);
    return high == 0u && length && *length <= device.size() - device.pos() &&
           device.seek(device.pos() + *length);
}

bool unpacksTo(QByteArray const& packed, quint64 bytes)
{
    quint64 unpacked = 0;
    for (int at = 0; at < packed.size();) {
        int const code = qint8(packed[at]);
        if (code == -128) {
            ++at;
            continue;
        }
        unpacked += quint64(code < 0 ? 1 - code : 1 + code);
        at += code < 0 ? 2 : 2 + code;
        if (at > packed.size() || unpacked > bytes)
            return false;
    }
    return unpacked == bytes;
}

bool areRowsSound(QIODevice& device, quint64 rows, quint64 rowBytes, bool isLong)
{
    int const numberBytes = isLong ? 4 : 2;
    if (rows > mostRows || rows * quint64(numberBytes) > quint64(device.size() - device.pos()))
        return false;
    QByteArray const lengths = device.read(qint64(rows) * numberBytes);
    for (int at = 0; at < lengths.size(); at += numberBytes) {
        quint32 const length = isLong ? qFromBigEndian<quint32>(lengths.constData() + at)
                                      : qFromBigEndian<quint16>(lengths.constData() + at);
        if (length > quint64(device.size() - device.pos()) || !unpacksTo(device.read(length), rowBytes))
            return false;
    }
    return true;
}

} // namespace

bool arePsdRowsSound(QIODevice& device)
{
    QByteArray const header = device.read(headerBytes);
    if (header.size() != headerBytes)
        return false;
    bool const isLong = qFromBigEndian<quint16>(header.constData() + 4) == 2;
    quint64 const channels = qFromBigEndian<quint16>(header.constData() + 12);
    quint64 const height = qFromBigEndian<quint32>(header.constData() + 14);
    quint64 const width = qFromBigEndian<quint32>(header.constData() + 18);
    quint64 const depth = qFromBigEndian<quint16>(header.constData() + 22);
    bool const hasSections =
        skipSection(device, false) && skipSection(device, false) && skipSection(device, isLong);
    auto const packing = hasSections ? readNumber<quint16>(device) : std::nullopt;
    if (!packing)
        return false;
    quint64 const rowBytes = (width * depth + 7) / 8;
    if (packing == quint16(1))
        return areRowsSound(device, channels * height, rowBytes, isLong);
    double const bytes = double(rowBytes) * double(height) * double(std::min(channels, mostChannelsRead));
    return bytes <= double(device.size() - device.pos());
}

} // namespace Orn::Image::Codec
