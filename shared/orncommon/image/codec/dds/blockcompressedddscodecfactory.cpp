#include "orncommon/image/codec/dds/blockcompressedddscodecfactory.h"

#include "orncommon/image/codec/dds/blockcompressedddscodec.h"

namespace Orn::Image::Codec {

int BlockCompressedDdsCodecFactory::capabilities(QIODevice& device, QByteArray const& format)
{
    bool const isNamed = format.isEmpty() || format.compare("dds", Qt::CaseInsensitive) == 0;
    return isNamed && device.isReadable() && BlockCompressedDdsCodec::canRead(device) ? CanRead : 0;
}

QSharedPointer<SurfaceCodec> BlockCompressedDdsCodecFactory::create(QIODevice& device, QByteArray const&)
{
    return QSharedPointer<BlockCompressedDdsCodec>::create(device);
}

QList<ImageFormat> BlockCompressedDdsCodecFactory::readFormats() const
{
    return {{QStringLiteral("DirectDraw Surface"), QStringLiteral("dds")}};
}

QList<ImageFormat> BlockCompressedDdsCodecFactory::writeFormats() const
{
    return {};
}

} // namespace Orn::Image::Codec
