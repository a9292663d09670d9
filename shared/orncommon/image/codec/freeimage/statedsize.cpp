#include "orncommon/image/codec/freeimage/statedsize.h"

#include <FreeImage.h>

#include <QRegularExpression>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Orn::Image::Codec {

namespace {

/// Enough for the header of any of these formats, comments and palettes included.
constexpr qint64 headerBytes = 64 * 1024;
/// Of a GIF file the image comes behind all that programs may have to say about it.
constexpr qint64 gifHeaderBytes = 16 * 1024 * 1024;
StatedSize const notToBeTrusted = {std::numeric_limits<double>::infinity(), 8};

using Size = std::optional<StatedSize>;

/// Numbers at places of the header; 0 where it has ended.
class Header
{
public:
    explicit Header(QByteArray const& bytes) : m_bytes(bytes) {}

    int size() const { return m_bytes.size(); }
    int find(QByteArray const& text) const { return m_bytes.indexOf(text); }
    unsigned int byte(int at) const { return at >= 0 && at < size() ? uchar(m_bytes.at(at)) : 0; }
    double little16(int at) const { return byte(at) | byte(at + 1) << 8; }
    double big16(int at) const { return byte(at) << 8 | byte(at + 1); }
    double little32(int at) const { return little16(at) + 65536.0 * little16(at + 2); }
    double big32(int at) const { return 65536.0 * big16(at) + big16(at + 2); }
    QString text() const { return QString::fromLatin1(m_bytes); }

private:
    QByteArray m_bytes;
};

/// Behind the screen and its palette come blocks, 0x21 with a label and chunks, until the image's own size.
Size sizeOfGif(Header const& header)
{
    auto const paletteBytes = [](unsigned int flags) {
        return (flags & 0x80) != 0 ? 3 << ((flags & 7) + 1) : 0;
    };
    int at = 13 + paletteBytes(header.byte(10));
    while (at < header.size() && header.byte(at) == 0x21) {
        at += 2;
        while (at < header.size() && header.byte(at) != 0)
            at += int(header.byte(at)) + 1;
        ++at;
    }
    if (header.byte(at) != 0x2C)
        return notToBeTrusted;
    double const screen = header.little16(6) * header.little16(8);
    return StatedSize{std::max(screen, header.little16(at + 5) * header.little16(at + 7)), 8};
}

/// Rows of whole bytes, one bit a pixel. Nobody writes the form with more headers.
Size sizeOfWbmp(Header const& header)
{
    if ((header.byte(1) & 0x80) != 0)
        return notToBeTrusted;
    int at = 2;
    auto const number = [&] {
        double value = 0;
        unsigned int byte = 0;
        do {
            byte = header.byte(at++);
            value = value * 128 + (byte & 0x7F);
        } while ((byte & 0x80) != 0);
        return value;
    };
    double const width = number(), height = number();
    return StatedSize{width * height, 1, at + std::ceil(width / 8) * height};
}

Size sizeOfXbm(Header const& header)
{
    static QRegularExpression const side(QStringLiteral("#define\\s+\\S*(?:width|height)\\s+(\\d+)"));
    double pixels = 1;
    for (auto match = side.globalMatch(header.text()); match.hasNext();)
        pixels *= match.next().captured(1).toDouble();
    constexpr double charactersOfAByte = 3; // 0x1234 is two
    return StatedSize{pixels, 8, pixels / 8 * charactersOfAByte};
}

/// Blocks of 4 x 4 pixels in at least 8 bytes, or pixels of as many bits as are stated.
Size sizeOfDds(Header const& header)
{
    double const pixels = header.little32(12) * header.little32(16);
    bool const isInBlocks = (header.byte(80) & 4) != 0;
    return StatedSize{pixels, 32, pixels * (isInBlocks ? 4 : header.little32(88)) / 8};
}

/// The first image within.
Size sizeOfMng(Header const& header)
{
    int const png = header.find("IHDR"), jpeg = header.find("JHDR");
    int const at = png >= 0 ? png : jpeg;
    if (at < 0)
        return {};
    return StatedSize{header.big32(at + 4) * header.big32(at + 8), 64};
}

} // namespace

Size statedSize(FreeImageFormat plugin, QIODevice& device)
{
    Header const header(device.read(plugin == FIF_GIF ? gifHeaderBytes : headerBytes));
    switch (plugin) {
    case FIF_DDS:
        return sizeOfDds(header);
    case FIF_GIF:
        return sizeOfGif(header);
    case FIF_IFF:
        if (int const at = header.find("BMHD"); at >= 0)
            return StatedSize{header.big16(at + 8) * header.big16(at + 10), 24};
        return {};
    case FIF_SGI:
        return StatedSize{header.big16(6) * header.big16(8), 32};
    case FIF_WBMP:
        return sizeOfWbmp(header);
    case FIF_XBM:
        return sizeOfXbm(header);
    case FIF_MNG:
        return sizeOfMng(header);
    default:
        return {};
    }
}

} // namespace Orn::Image::Codec
