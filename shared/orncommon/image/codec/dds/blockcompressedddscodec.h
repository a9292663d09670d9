#pragma once

#include "orncommon/image/codec/surfacecodec.h"

#include <QIODevice>

namespace Orn::Image::Codec {

/// Decodes the first level of a DDS file of block-compressed data: ATI1 to `L8`, DXT1 to DXT5 and ATI2 to
/// `RGBA8`. The header's flags are not looked at, only size and code, and nothing is allocated unless the
/// device holds the data that they ask for. There is no writer.
class BlockCompressedDdsCodec : public SurfaceCodec
{
public:
    explicit BlockCompressedDdsCodec(QIODevice& device) : m_device(device) {}

    /// Whether a header with the code of block-compressed data follows, sound or not: a damaged one is nobody
    /// else's business. The device stays where it is.
    static bool canRead(QIODevice& device);

protected:
    bool doRead(QSharedPointer<Surfaces::Surface>& surface, SurfaceCodecOptions* options) override;
    bool doWrite(QSharedPointer<Surfaces::Surface> const& surface,
                 SurfaceCodecOptions const* options) override;

private:
    QIODevice& m_device;
};

} // namespace Orn::Image::Codec
