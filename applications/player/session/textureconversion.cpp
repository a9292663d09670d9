#include "applications/player/session/textureconversion.h"

#include "orncommon/image/codec/surfacecodec.h"
#include "orncommon/image/codec/surfacecodecmanager.h"
#include "orncommon/image/qimageconversion.h"
#include "orncommon/image/surfaceoperations.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QPainter>
#include <QtEndian>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>

namespace Zph::Applications::Player {

namespace {

using namespace Orn::Surfaces;
using SurfacePtr = QSharedPointer<Surface>;

struct Free
{
    void operator()(void* block) const { std::free(block); }
};
using Buffer = std::unique_ptr<void, Free>;

PixelFormat rawFormat(const VellorTexture& texture)
{
    switch (texture.pixelFormat & (VELLOR_FORMAT_LAYOUT_MASK | VELLOR_FORMAT_DEPTH_MASK)) {
    case VELLOR_FORMAT_RGBA:
    case VELLOR_FORMAT_RGBX:
        return texture.channelOrder == VELLOR_ORDER_BGRA ? BGRA8 : RGBA8;
    case VELLOR_FORMAT_GRAYSCALE:
        return L8;
    case VELLOR_FORMAT_RGBA | VELLOR_FORMAT_16BITS:
    case VELLOR_FORMAT_RGBX | VELLOR_FORMAT_16BITS:
        return RGBA16;
    case VELLOR_FORMAT_GRAYSCALE | VELLOR_FORMAT_16BITS:
        return L16;
    case VELLOR_FORMAT_RGBA | VELLOR_FORMAT_32FLOAT:
    case VELLOR_FORMAT_RGBX | VELLOR_FORMAT_32FLOAT:
        return RGBA32F;
    case VELLOR_FORMAT_GRAYSCALE | VELLOR_FORMAT_32FLOAT:
        return L32F;
    case VELLOR_FORMAT_RGBA | VELLOR_FORMAT_16FLOAT:
    case VELLOR_FORMAT_RGBX | VELLOR_FORMAT_16FLOAT:
        return RGBA16F;
    case VELLOR_FORMAT_GRAYSCALE | VELLOR_FORMAT_16FLOAT:
        return L16F;
    default:
        return PixelFormat_Invalid;
    }
}

SurfacePtr reorderedCopy(const quint8* source, const SurfaceDescription& description, unsigned order)
{
    auto copy = SurfacePtr::create(description, surfaceAlignment);
    if (copy->isEmpty())
        return {};
    quint8* target = copy->data();
    const std::size_t pixels = std::size_t(description.width) * description.height;
    for (std::size_t i = 0; i < pixels; ++i, source += 4, target += 4)
        for (unsigned channel = 0; channel < 4; ++channel)
            target[channel] = source[(order >> (2 * channel)) & 3];
    return copy;
}

SurfacePtr fromRaw(const VellorTexture& texture, Buffer buffer)
{
    SurfaceDescription description(texture.width, texture.height, rawFormat(texture));
    if (description.format == PixelFormat_Invalid)
        return {};
    if (description.format == RGBA8 && texture.channelOrder != VELLOR_ORDER_RGBA)
        return reorderedCopy(static_cast<const quint8*>(buffer.get()), description, texture.channelOrder);
    description.pitch = std::uint64_t(texture.width) * getPixelSize(description.format);
    void* pixels = buffer.release();
    return SurfacePtr::create(pixels, description, [pixels] { std::free(pixels); });
}

struct BlockKind
{
    quint32 bytes = 0; ///< of one block
    const char* fourCC = nullptr;
};

BlockKind blockKind(quint8 format)
{
    switch (format) {
    case VELLOR_FORMAT_BC1:
        return {8, "DXT1"};
    case VELLOR_FORMAT_BC2:
    case VELLOR_FORMAT_BC2_STRAIGHT:
        return {16, "DXT3"};
    case VELLOR_FORMAT_BC3:
    case VELLOR_FORMAT_BC3_STRAIGHT:
        return {16, "DXT5"};
    case VELLOR_FORMAT_BC5:
        return {16, "ATI2"};
    case VELLOR_FORMAT_BC4:
        return {8, "ATI1"};
    default:
        return {};
    }
}

constexpr int ddsHeaderBytes = 128;

QByteArray ddsHeader(const VellorTexture& texture, quint32 dataBytes, const char* fourCC)
{
    QByteArray header(ddsHeaderBytes, 0);
    const auto put = [&header](int offset, quint32 value) {
        const quint32 stored = qToLittleEndian(value);
        header.replace(offset, int(sizeof stored), reinterpret_cast<const char*>(&stored),
                       int(sizeof stored));
    };
    header.replace(0, 4, "DDS ", 4);
    put(4, 124);     // header size
    put(8, 0x81007); // caps, height, width, pixel format and linear size are there
    put(12, texture.height);
    put(16, texture.width);
    put(20, dataBytes);
    put(76, 32); // pixel format size
    put(80, 4);  // it is a fourCC
    header.replace(84, 4, fourCC, 4);
    put(108, 0x1000); // a texture
    return header;
}

/// Goes through the "dds" reader of the image library, behind a header made for it.
SurfacePtr fromBlocks(const VellorTexture& texture, Buffer buffer)
{
    const BlockKind kind = blockKind(texture.pixelFormat);
    if (!kind.fourCC) // nobody could decode it, and nobody knows how much of it there is
        return {};
    quint64 bytes = kind.bytes;
    if (texture.width > 3)
        bytes *= texture.width >> 2;
    if (texture.height > 3)
        bytes *= texture.height >> 2;
    if (bytes > quint64(std::numeric_limits<int>::max() - ddsHeaderBytes))
        return {};
    QByteArray file = ddsHeader(texture, quint32(bytes), kind.fourCC);
    file.append(static_cast<const char*>(buffer.get()), int(bytes));

    QBuffer device(&file);
    device.open(QIODevice::ReadOnly);
    const auto reader = Orn::Image::Codec::SurfaceCodecManager::instance().createReader(device, "dds");
    SurfacePtr surface;
    if (!reader || !reader->read(surface, nullptr) || !surface || surface->isEmpty())
        return {};
    return surface;
}

uint8_t formatCode(PixelFormat format)
{
    const int layout = getChannelsCount(format) == 1 ? VELLOR_FORMAT_GRAYSCALE : VELLOR_FORMAT_RGBA;
    switch (getBitsPerChannel(format)) {
    case 8:
        return uint8_t(layout | VELLOR_FORMAT_8BITS);
    case 16:
        return uint8_t(layout | (isFloatFormat(format) ? VELLOR_FORMAT_16FLOAT : VELLOR_FORMAT_16BITS));
    default:
        return uint8_t(layout | VELLOR_FORMAT_32FLOAT);
    }
}

SurfacePtr notSupported(const VellorTexture& texture)
{
    QImage tile(std::max<int>(texture.width, 1), std::max<int>(texture.height, 1), QImage::Format_ARGB32);
    if (tile.isNull())
        return {};
    tile.fill(0xffa8a8a8u);
    // Without a graphical application there are no fonts; the tile alone must do.
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        QPainter painter(&tile);
        painter.drawText(
            QRect(0, 0, tile.width() - 1, tile.height() - 1), Qt::AlignHCenter | Qt::AlignVCenter,
            QCoreApplication::translate("Zph::Applications::Player::Engine", "Non supported format"));
    }
    return Orn::Image::Core::qImageToSurface(tile);
}

} // namespace

QSharedPointer<Surface> surfaceFromTexture(const VellorTexture& texture)
{
    Buffer buffer(texture.buffer);
    SurfacePtr surface;
    if (buffer && texture.width > 0 && texture.height > 0) {
        const int family = texture.pixelFormat & VELLOR_FORMAT_FAMILY_MASK;
        if (family == VELLOR_FORMAT_FAMILY_RAW)
            surface = fromRaw(texture, std::move(buffer));
        else if (family == VELLOR_FORMAT_FAMILY_COMPRESSED)
            surface = fromBlocks(texture, std::move(buffer));
    }
    return surface ? surface : notSupported(texture);
}

VellorTexture textureFromSurface(const SurfacePtr& surface, SurfacePtr& holder)
{
    constexpr unsigned longest = std::numeric_limits<uint16_t>::max();
    VellorTexture texture = {};
    if (!surface || surface->isEmpty() || surface->width() > longest || surface->height() > longest)
        return texture;
    const unsigned channels = getChannelsCount(surface->format());
    const bool isSigned = surface->description().flags & SurfaceDescription::SignedComponents;
    PixelFormat format = channels == 3 ? withChannels(surface->format(), 4) : surface->format();
    if (isSigned)
        format = withChannels(L32F, channels == 3 ? 4 : channels);
    const Orn::Image::Core::ConversionParameters opaque{255};
    holder.reset(); // what was held there may be anything, and a conversion writes into it
    if (format != surface->format())
        Orn::Image::Core::convertTo(*surface, holder, format, &opaque);
    else
        holder = surface->pitch() == surface->lineSize() ? surface : Orn::Image::Core::clone(*surface);
    if (!holder)
        return texture;
    texture.buffer = holder->data();
    texture.width = uint16_t(holder->width());
    texture.height = uint16_t(holder->height());
    texture.pixelFormat = formatCode(format);
    texture.channelOrder = isBlueFirst(format) ? VELLOR_ORDER_BGRA : VELLOR_ORDER_RGBA;
    return texture;
}

} // namespace Zph::Applications::Player
