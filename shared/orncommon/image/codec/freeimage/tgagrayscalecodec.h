#pragma once

#include "orncommon/image/codec/freeimage/icustomfreeimagecodec.h"

namespace Orn::Image::Codec {

/// Writes grey TGA files, which the library's plug-in can't: 8 bits, plain or run-length coded, rows from the
/// bottom up. The image descriptor of 8 and the footer of 25 bytes are what other programs of this family
/// write and read.
class TGAGrayscaleCodec : public ICustomFreeImageCodec
{
public:
    static bool canSave(QSharedPointer<Surfaces::Surface> const& surface);

    FreeImageType getBitmapType(QSharedPointer<Surfaces::Surface> const& surface) override;
    Surfaces::PixelFormat
    getSurfaceConvertedFormat(QSharedPointer<Surfaces::Surface> const& surface) override;
    bool save(FreeImageIO* io, FIBITMAP* bitmap, void* handle, int page, int flags, void* data) override;
};

} // namespace Orn::Image::Codec
