#pragma once

#include "orncommon/image/codec/surfacecodecfactory.h"

namespace Orn::Image::Codec {

/// Answers for block-compressed DDS data, by its content, under the format "dds" or none.
class BlockCompressedDdsCodecFactory : public SurfaceCodecFactory
{
public:
    int capabilities(QIODevice& device, QByteArray const& format) override;
    QSharedPointer<SurfaceCodec> create(QIODevice& device, QByteArray const& format) override;
    QList<ImageFormat> readFormats() const override;
    QList<ImageFormat> writeFormats() const override;
};

} // namespace Orn::Image::Codec
