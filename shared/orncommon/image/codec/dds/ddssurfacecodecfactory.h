#pragma once

#include "orncommon/image/codec/surfacecodecfactory.h"

namespace Orn::Image::Codec {

/// Answers for DDS files without compression, under the format "dds", or under none by their content. What
/// it can't read, compressed blocks and colour of 24 bits or without alpha, it leaves to the next factory.
class DDSSurfaceCodecFactory : public SurfaceCodecFactory
{
public:
    int capabilities(QIODevice& device, QByteArray const& format) override;
    QSharedPointer<SurfaceCodec> create(QIODevice& device, QByteArray const& format) override;
    QList<ImageFormat> readFormats() const override;
    QList<ImageFormat> writeFormats() const override;
};

} // namespace Orn::Image::Codec
