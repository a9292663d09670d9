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

/// A bitmap over pixels that are not the library's.
struct BitmapToSave
{
    Surfaces::Surface pixels;
    Bitmap bitmap; ///< null on failure
};

/// A surface as a bitmap to save, in `format`: of 8-bit colour formats, one with blue first.
BitmapToSave bitmapFromSurface(Surfaces::Surface const& surface, Surfaces::PixelFormat format);

/// The format in which pixels of `format` reach the plug-in: without the alpha that `type`, the bitmap type
/// chosen for it, or a file of the plug-in can't hold.
Surfaces::PixelFormat savedFormat(Surfaces::PixelFormat format, FreeImageType type, FreeImageFormat plugin);

/// Brings an 8-bit-channel bitmap to a depth that the plug-in can save; other types stay. Null on failure.
Bitmap settleDepth(Bitmap bitmap, FreeImageFormat plugin);

} // namespace Orn::Image::Codec
