#include "orncommon/image/codec/dds/ddssurfacecodecfactory.h"

#include "orncommon/image/codec/dds/ddsheader.h"
#include "orncommon/image/codec/dds/ddssurfacecodec.h"

namespace Orn::Image::Codec {

namespace {

bool isReadType(std::uint32_t pixelType)
{
    bool const lacksAlpha = pixelType == DDSRgbx8 || pixelType == DDSBgrx8;
    return !lacksAlpha && surfaceFormatOf(pixelType) != Surfaces::PixelFormat_Invalid;
}

bool canRead(QIODevice& device)
{
    qint64 const position = device.pos();
    DDSHeader header;
    bool const isRead = ornDDSHeaderRead(device.peek(ddsHeaderSize), header) && isReadType(header.pixelType);
    device.seek(position);
    return isRead;
}

} // namespace

int DDSSurfaceCodecFactory::capabilities(QIODevice& device, QByteArray const& format)
{
    bool const isNamed = format.compare("dds", Qt::CaseInsensitive) == 0;
    if (!isNamed && !format.isEmpty())
        return 0;
    int const result = isNamed ? CanWrite : 0;
    bool const isOpenedHere = !device.isOpen() && device.open(QIODevice::ReadOnly);
    if (!device.isReadable())
        return result;
    bool const reads = canRead(device);
    if (isOpenedHere)
        device.close();
    return result | (reads ? CanRead : 0);
}

QSharedPointer<SurfaceCodec> DDSSurfaceCodecFactory::create(QIODevice& device, QByteArray const&)
{
    return QSharedPointer<DDSSurfaceCodec>::create(device);
}

QList<ImageFormat> DDSSurfaceCodecFactory::readFormats() const
{
    return writeFormats();
}

QList<ImageFormat> DDSSurfaceCodecFactory::writeFormats() const
{
    return {{QStringLiteral("DirectDraw Surface"), QStringLiteral("dds")}};
}

} // namespace Orn::Image::Codec
