#pragma once

#include "orncommon/image/codec/freeimage/freeimagetypes.h"
#include "orncommon/surfaces/surface.h"

#include <QSharedPointer>

namespace Orn::Image::Codec {

/// A writer that stands in for a plug-in of the library.
class ICustomFreeImageCodec
{
public:
    virtual ~ICustomFreeImageCodec() = default;

    /// The bitmap type that `save` takes.
    virtual FreeImageType getBitmapType(QSharedPointer<Surfaces::Surface> const& surface) = 0;

    /// The format to which a surface is converted before it becomes that bitmap.
    virtual Surfaces::PixelFormat
    getSurfaceConvertedFormat(QSharedPointer<Surfaces::Surface> const& surface) = 0;

    /// As a plug-in's save function: `flags` are those of the plug-in, false is a failed write.
    virtual bool save(FreeImageIO* io, FIBITMAP* bitmap, void* handle, int page, int flags, void* data) = 0;
};

} // namespace Orn::Image::Codec
