#include "orncommon/image/codec/freeimage/exrheader.h"

#include <QtEndian>

#include <algorithm>

namespace Orn::Image::Codec {

namespace {

constexpr quint32 magic = 20000630;
constexpr quint32 multiPartFlag = 0x1000;
constexpr int longestName = 255;

struct Attribute
{
    QByteArray name;
    quint32 size = 0; ///< bytes of the value, which follows
};

std::optional<quint32> readNumber(QIODevice& device)
{
    QByteArray const bytes = device.read(4);
    if (bytes.size() != 4)
        return {};
    return qFromLittleEndian<quint32>(bytes.constData());
}

/// Text up to a zero byte, which is taken too.
std::optional<QByteArray> readText(QIODevice& device)
{
    QByteArray text;
    char byte = 0;
    while (device.getChar(&byte)) {
        if (byte == '\0')
            return text;
        if (text.size() == longestName)
            return {};
        text.append(byte);
    }
    return {};
}

/// An attribute without a name ends a header.
std::optional<Attribute> readAttribute(QIODevice& device)
{
    auto const name = readText(device);
    if (!name || name->isEmpty())
        return name ? std::make_optional<Attribute>() : std::nullopt;
    auto const type = readText(device);
    auto const size = readNumber(device);
    if (!type || !size || *size > device.size() - device.pos())
        return {};
    return Attribute{*name, *size};
}

/// Two corners, both within: x and y of the least, x and y of the greatest.
double pixelsOfWindow(QByteArray const& corners)
{
    if (corners.size() != 16)
        return 0.0;
    auto const at = [&](int i) { return double(qFromLittleEndian<qint32>(corners.constData() + i * 4)); };
    return (at(2) - at(0) + 1.0) * (at(3) - at(1) + 1.0);
}

} // namespace

std::optional<double> exrPixelCount(QIODevice& device)
{
    auto const number = readNumber(device);
    auto const version = readNumber(device);
    if (number != magic || !version)
        return {};
    double most = 0.0;
    bool isHeaderEmpty = true;
    while (auto const attribute = readAttribute(device)) {
        if (attribute->name.isEmpty()) {
            // Several parts have a header each and an empty one behind the last.
            if ((*version & multiPartFlag) == 0 || isHeaderEmpty)
                return most > 0.0 ? std::optional<double>(most) : std::nullopt;
            isHeaderEmpty = true;
            continue;
        }
        isHeaderEmpty = false;
        qint64 const end = device.pos() + attribute->size;
        if (attribute->name == "dataWindow")
            most = std::max(most, pixelsOfWindow(device.read(attribute->size)));
        if (!device.seek(end))
            return {};
    }
    return {};
}

} // namespace Orn::Image::Codec
