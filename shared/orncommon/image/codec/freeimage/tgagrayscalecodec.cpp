#include "orncommon/image/codec/freeimage/tgagrayscalecodec.h"

#include <FreeImage.h>

#include <QByteArray>
#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <limits>

namespace Orn::Image::Codec {

namespace {

constexpr char greyType = 3;
constexpr char runLengthGreyType = 11;
constexpr char imageDescriptor = 8;
constexpr unsigned int longestPacket = 128;

bool writeBytes(FreeImageIO* io, void* handle, QByteArray const& bytes)
{
    auto* const data = const_cast<char*>(bytes.constData());
    return io->write_proc(data, 1, unsigned(bytes.size()), handle) == unsigned(bytes.size());
}

QByteArray header(FIBITMAP* bitmap, bool isRunLength)
{
    QByteArray bytes(18, '\0');
    bytes[2] = isRunLength ? runLengthGreyType : greyType;
    qToLittleEndian(quint16(FreeImage_GetWidth(bitmap)), bytes.data() + 12);
    qToLittleEndian(quint16(FreeImage_GetHeight(bitmap)), bytes.data() + 14);
    bytes[16] = char(FreeImage_GetBPP(bitmap));
    bytes[17] = imageDescriptor;
    return bytes;
}

QByteArray footer()
{
    return QByteArray(8, '\0') + "TRUEVISION-XFILE.";
}

/// One row as packets: a run is 0x80 | count - 1 and one pixel, a raw packet count - 1 and the pixels. Two
/// equal neighbours start a run; no packet holds more than 128 pixels.
QByteArray runLengthRow(char const* row, unsigned int width, unsigned int pixelSize)
{
    auto const isEqual = [&](unsigned int a, unsigned int b) {
        return std::memcmp(row + a * pixelSize, row + b * pixelSize, pixelSize) == 0;
    };
    QByteArray packets;
    packets.reserve(int(width * pixelSize + (width + 2) / 3));
    unsigned int rawStart = 0;
    auto const flushRaw = [&](unsigned int end) {
        while (rawStart < end) {
            unsigned int const count = std::min(end - rawStart, longestPacket);
            packets.append(char(count - 1)).append(row + rawStart * pixelSize, int(count * pixelSize));
            rawStart += count;
        }
    };
    unsigned int x = 0;
    while (x < width) {
        unsigned int run = 1;
        while (run < longestPacket && x + run < width && isEqual(x, x + run))
            ++run;
        if (run > 1) {
            flushRaw(x);
            packets.append(char(0x80 | (run - 1))).append(row + x * pixelSize, int(pixelSize));
            rawStart = x + run;
        }
        x += run;
    }
    flushRaw(width);
    return packets;
}

} // namespace

bool TGAGrayscaleCodec::canSave(QSharedPointer<Surfaces::Surface> const& surface)
{
    Surfaces::PixelFormat const format = surface->format();
    return format == Surfaces::L8 || format == Surfaces::L16 || format == Surfaces::L32F;
}

FreeImageType TGAGrayscaleCodec::getBitmapType(QSharedPointer<Surfaces::Surface> const&)
{
    return FIT_BITMAP;
}

Surfaces::PixelFormat
TGAGrayscaleCodec::getSurfaceConvertedFormat(QSharedPointer<Surfaces::Surface> const& surface)
{
    Surfaces::PixelFormat const format = surface->format();
    return format == Surfaces::L16 || format == Surfaces::L32F ? Surfaces::L8 : format;
}

bool TGAGrayscaleCodec::save(FreeImageIO* io, FIBITMAP* bitmap, void* handle, int, int flags, void*)
{
    constexpr unsigned int longestSide = std::numeric_limits<quint16>::max();
    unsigned int const width = FreeImage_GetWidth(bitmap);
    unsigned int const height = FreeImage_GetHeight(bitmap);
    if (width > longestSide || height > longestSide)
        return false;
    bool const isRunLength = (flags & TARGA_SAVE_RLE) != 0;
    unsigned int const pixelSize = FreeImage_GetBPP(bitmap) / 8;
    if (!writeBytes(io, handle, header(bitmap, isRunLength)))
        return false;
    for (unsigned int y = 0; y < height; ++y) {
        auto* const row = reinterpret_cast<char*>(FreeImage_GetScanLine(bitmap, int(y)));
        bool const written = isRunLength ? writeBytes(io, handle, runLengthRow(row, width, pixelSize))
                                         : io->write_proc(row, pixelSize, width, handle) == width;
        if (!written)
            return false;
    }
    return writeBytes(io, handle, footer());
}

} // namespace Orn::Image::Codec
