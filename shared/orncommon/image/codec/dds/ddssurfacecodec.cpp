#include "orncommon/image/codec/dds/ddssurfacecodec.h"

#include "orncommon/image/codec/dds/ddsheader.h"
#include "orncommon/image/surfaceoperations.h"

#include <optional>
#include <utility>

namespace Orn::Image::Codec {

using Surfaces::PixelFormat;
using Surfaces::Surface;
using Surfaces::SurfaceDescription;

namespace {

std::optional<DDSPixelType> pixelTypeOf(PixelFormat format)
{
    switch (format) {
    case Surfaces::L8:
        return DDSL8;
    case Surfaces::RGB8: // at 24 bits the masks stand the other way around than at 32
        return DDSBgr24;
    case Surfaces::BGR8:
        return DDSRgb24;
    case Surfaces::RGBA8:
        return DDSRgba8;
    case Surfaces::BGRA8:
        return DDSBgra8;
    case Surfaces::L16:
        return DDSL16;
    case Surfaces::RGBA16:
        return DDSRgba16;
    case Surfaces::L16F:
        return DDSL16F;
    case Surfaces::RGBA16F:
        return DDSRgba16F;
    case Surfaces::L32F:
        return DDSL32F;
    case Surfaces::RGBA32F:
        return DDSRgba32F;
    default:
        return {};
    }
}

} // namespace

bool DDSSurfaceCodec::doRead(QSharedPointer<Surface>& surface, SurfaceCodecOptions*)
{
    DDSHeader header;
    if (!ornDDSHeaderRead(m_device.read(ddsHeaderSize), header))
        return false;
    SurfaceDescription description(header.width, header.height, surfaceFormatOf(header.pixelType));
    if (double(m_device.bytesAvailable()) < double(description.lineSize()) * header.height)
        return false;
    description.alphaUse = (header.pixelType & DDSAlpha) != 0 ? SurfaceDescription::AlphaCarried
                                                              : SurfaceDescription::AlphaAbsent;
    Surface read(description);
    if (read.isEmpty())
        return false;
    auto const size = qint64(read.pitch() * read.height());
    if (m_device.read(reinterpret_cast<char*>(read.data()), size) != size)
        return false;
    surface = Core::makeShared(std::move(read));
    return true;
}

bool DDSSurfaceCodec::doWrite(QSharedPointer<Surface> const& surface, SurfaceCodecOptions const*)
{
    auto const type = pixelTypeOf(surface->format());
    if (!type)
        return false;
    QByteArray const header =
        ornDDSHeaderWrite(surface->width(), surface->height(), surface->lineSize(), *type);
    if (m_device.write(header) != header.size())
        return false;
    auto const* data = reinterpret_cast<char const*>(surface->data());
    if (surface->pitch() == surface->lineSize()) {
        m_device.write(data, qint64(surface->lineSize() * surface->height()));
        return true;
    }
    for (unsigned int y = 0; y < surface->height(); ++y)
        m_device.write(data + y * surface->pitch(), qint64(surface->lineSize()));
    return true;
}

} // namespace Orn::Image::Codec
