#pragma once

#include "orncommon/image/codec/surfacecodec.h"

#include <QIODevice>

namespace Orn::Image::Codec {

/// Reads and writes the top level of DDS files without compression, byte by byte. Pixels of 24 bits are
/// written but not read. Nothing is allocated unless the device holds the data that the header promises.
class DDSSurfaceCodec : public SurfaceCodec
{
public:
    explicit DDSSurfaceCodec(QIODevice& device) : m_device(device) {}

    /// There is no block compressor.
    bool isDXTCompressionEnabled() const { return false; }

protected:
    bool doRead(QSharedPointer<Surfaces::Surface>& surface, SurfaceCodecOptions* options) override;
    /// True when the header was taken: what happens to the rows, the device knows.
    bool doWrite(QSharedPointer<Surfaces::Surface> const& surface,
                 SurfaceCodecOptions const* options) override;

private:
    QIODevice& m_device;
};

} // namespace Orn::Image::Codec
