#pragma once

#include "orncommon/image/codec/freeimage/freeimagetypes.h"
#include "orncommon/image/codec/surfacecodec.h"

#include <QByteArray>
#include <QIODevice>

#include <memory>

namespace Orn::Image::Codec {

class FreeImageMgr;

/// Reads and writes through the library. A decoded bitmap becomes the surface's pixels with no copy.
class FreeimageSurfaceCodec : public SurfaceCodec
{
public:
    FreeimageSurfaceCodec(std::weak_ptr<FreeImageMgr> mgr, QIODevice& device, QByteArray const& format);

    /// The plug-in of a format name, and of what a readable device holds (falling back to the name); -1 for
    /// none. The device stays where it is.
    static FreeImageFormat pluginOfName(QByteArray const& format);
    static FreeImageFormat pluginOfContent(QIODevice& device, QByteArray const& format);

protected:
    bool doRead(QSharedPointer<Surfaces::Surface>& surface, SurfaceCodecOptions* options) override;
    bool doWrite(QSharedPointer<Surfaces::Surface> const& surface,
                 SurfaceCodecOptions const* options) override;

private:
    bool readFrom(QIODevice& device, FreeImageFormat plugin, QSharedPointer<Surfaces::Surface>& surface,
                  SurfaceCodecOptions* options);

    std::weak_ptr<FreeImageMgr> m_mgr;
    QIODevice& m_device;
    QByteArray m_format;
};

} // namespace Orn::Image::Codec
