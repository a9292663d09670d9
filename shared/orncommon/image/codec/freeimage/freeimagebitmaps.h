#pragma once

#include "orncommon/image/codec/freeimage/freeimagetypes.h"
#include "orncommon/surfaces/surface.h"

#include <QSharedPointer>

#include <memory>

namespace Orn::Image::Codec {

struct BitmapUnloader
{
    void operator()(FIBITMAP* bitmap) const;
};
using Bitmap = std::unique_ptr<FIBITMAP, BitmapUnloader>;

/// A loaded bitmap as a surface, which takes the bitmap over. Grey stays grey, all else gets four channels.
/// Null for the types that have no pixel format.
QSharedPointer<Surfaces::Surface> surfaceFromBitmap(Bitmap bitmap);

/// A surface as a bitmap to save: converted to `format`, then to the bitmap type `type`, which is the
/// format's own or the one without its alpha. Null on failure.
Bitmap bitmapFromSurface(Surfaces::Surface const& surface, Surfaces::PixelFormat format, FreeImageType type);

/// Brings an 8-bit-channel bitmap to a depth that the plug-in can save; other types stay. Null on failure.
Bitmap settleDepth(Bitmap bitmap, FreeImageFormat plugin);

} // namespace Orn::Image::Codec
