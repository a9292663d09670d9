#include "orncommon/image/codec/freeimage/freeimagesurfacecodec.h"

#include "orncommon/image/codec/freeimage/exrheader.h"
#include "orncommon/image/codec/freeimage/freeimagebitmaps.h"
#include "orncommon/image/codec/freeimage/freeimageio.h"
#include "orncommon/image/codec/freeimage/freeimagemetadata.h"
#include "orncommon/image/codec/freeimage/freeimagemgr.h"
#include "orncommon/image/codec/freeimage/freeimagesaveflags.h"
#include "orncommon/image/codec/freeimage/jpeg2000header.h"
#include "orncommon/image/codec/freeimage/plainbmp.h"
#include "orncommon/image/codec/freeimage/psdcheck.h"
#include "orncommon/image/codec/freeimage/statedsize.h"
#include "orncommon/image/codec/freeimage/tgagrayscalecodec.h"
#include "orncommon/image/codec/surfacecodecoptions.h"
#include "orncommon/image/surfaceoperations.h"

#include <FreeImage.h>

#include <QBuffer>
#include <QDebug>

#include <cstring>
#include <utility>

namespace Orn::Image::Codec {

using Surfaces::PixelFormat;
using Surfaces::Surface;

namespace {

void reportMessage(FREE_IMAGE_FORMAT plugin, char const* message)
{
    if (std::strcmp(message, FreeImageDevice::refusal()) == 0)
        return; // whoever owns the device knows
    char const* const name = plugin == FIF_UNKNOWN ? "" : FreeImage_GetFormatFromFIF(plugin);
    qWarning().noquote() << QStringLiteral("Freeimage Error>> %1. (format: %2)")
                                .arg(QString::fromUtf8(message), QString::fromUtf8(name));
}

/// No compression that the library's plug-ins know packs tighter than this, with three kinds of exceptions.
/// So a header that promises more than the file can hold is found out before any pixel is allocated.
constexpr double tightestPacking = 4096.0;
constexpr double alwaysAccepted = 16.0 * 1024 * 1024;
constexpr double neverAccepted = 16.0 * 1024 * 1024 * 1024;
/// Of those that pack without bound, where the header's word is all there is: a colour picture of 16384 x
/// 16384 pixels goes through.
constexpr double neverAcceptedUnbounded = 1024.0 * 1024 * 1024;

bool packsWithoutBound(FREE_IMAGE_FORMAT plugin, unsigned int bitsPerPixel)
{
    bool const isBilevelTiff = plugin == FIF_TIFF && bitsPerPixel == 1;
    return plugin == FIF_WEBP || plugin == FIF_J2K || plugin == FIF_JP2 || plugin == FIF_JXR ||
           plugin == FIF_FAXG3 || isBilevelTiff;
}

bool isCredibleSize(FREE_IMAGE_FORMAT plugin, double pixels, unsigned int bitsPerPixel, FreeImageDevice& file)
{
    double const bytes = pixels * bitsPerPixel / 8.0;
    double const packed = double(file.device().size() - file.start());
    if (packsWithoutBound(plugin, bitsPerPixel))
        return bytes <= neverAcceptedUnbounded;
    return bytes <= alwaysAccepted || (bytes <= neverAccepted && bytes <= packed * tightestPacking);
}

/// Before the library reads an EXR header: it has at least one half per pixel.
bool isCredibleExr(FreeImageDevice& file)
{
    auto const pixels = exrPixelCount(file.device());
    return pixels && file.rewind() && isCredibleSize(FIF_EXR, *pixels, 16, file);
}

/// Before the library reads a JPEG 2000 header, for which it makes the whole picture.
bool isCredibleJpeg2000(FREE_IMAGE_FORMAT plugin, FreeImageDevice& file)
{
    auto const size = jpeg2000Size(file.device());
    return size && file.rewind() && isCredibleSize(plugin, size->pixels, size->bitsPerPixel, file);
}

/// The same for the other plug-ins that can't read a header alone.
bool isCredibleHeader(FREE_IMAGE_FORMAT plugin, FreeImageDevice& file)
{
    auto const stated = statedSize(plugin, file.device());
    return file.rewind() && (!stated || isCredibleSize(plugin, stated->pixels, stated->bitsPerPixel, file));
}

/// Whether the size that the header states can be true for a file of this length.
bool isCredible(FREE_IMAGE_FORMAT plugin, FreeImageDevice& file)
{
    if (plugin == FIF_EXR && !isCredibleExr(file))
        return false;
    if (plugin == FIF_PSD && (!arePsdRowsSound(file.device()) || !file.rewind()))
        return false;
    if ((plugin == FIF_J2K || plugin == FIF_JP2) && !isCredibleJpeg2000(plugin, file))
        return false;
    if (!FreeImage_FIFSupportsNoPixels(plugin))
        return isCredibleHeader(plugin, file);
    Bitmap const header(FreeImage_LoadFromHandle(plugin, file.io(), file.handle(), FIF_LOAD_NOPIXELS));
    if (!header || !file.rewind())
        return false;
    double const pixels = double(FreeImage_GetWidth(header.get())) * FreeImage_GetHeight(header.get());
    return isCredibleSize(plugin, pixels, FreeImage_GetBPP(header.get()), file);
}

/// Null when the file can't be read.
Bitmap loadBitmap(FREE_IMAGE_FORMAT plugin, QIODevice& device)
{
    FreeImageDevice file(device);
    if (plugin == FIF_PSD)
        file.setReader(FreeImageDevice::Reader::EndsByException);
    try {
        if (!isCredible(plugin, file))
            return {};
        return Bitmap(FreeImage_LoadFromHandle(plugin, file.io(), file.handle(), 0));
    } catch (char const* message) {
        reportMessage(plugin, message);
        return {};
    }
}

/// In what form a surface goes into the file.
struct Target
{
    PixelFormat format = Surfaces::PixelFormat_Invalid;
    FreeImageType type = FIT_UNKNOWN;
    std::unique_ptr<ICustomFreeImageCodec> custom;
};

bool chooseTarget(FreeImageMgr const& mgr, FREE_IMAGE_FORMAT plugin, QSharedPointer<Surface> const& surface,
                  Target& target)
{
    if (plugin == FIF_TARGA && TGAGrayscaleCodec::canSave(surface)) {
        target.custom = std::make_unique<TGAGrayscaleCodec>();
        target.type = target.custom->getBitmapType(surface);
        target.format = target.custom->getSurfaceConvertedFormat(surface);
        return true;
    }
    if (!mgr.findBestMatches(plugin, surface->format(), target.type, target.format))
        return false;
    // An opaque image is never stored with an alpha channel in these two.
    bool const dropsOpaqueAlpha = plugin == FIF_TARGA || plugin == FIF_BMP;
    if (dropsOpaqueAlpha && !Core::hasPixelWithAlpha(*surface))
        target.format = Core::removeAlpha(target.format);
    target.format = savedFormat(target.format, target.type, plugin);
    return true;
}

} // namespace

FreeimageSurfaceCodec::FreeimageSurfaceCodec(std::weak_ptr<FreeImageMgr> mgr, QIODevice& device,
                                             QByteArray const& format)
    : m_mgr(std::move(mgr)), m_device(device), m_format(format)
{
}

FreeImageFormat FreeimageSurfaceCodec::pluginOfName(QByteArray const& format)
{
    return format.isEmpty() ? FIF_UNKNOWN : FreeImage_GetFIFFromFilename("file." + format);
}

FreeImageFormat FreeimageSurfaceCodec::pluginOfContent(QIODevice& device, QByteArray const& format)
{
    FreeImageDevice file(device);
    FREE_IMAGE_FORMAT const plugin = FreeImage_GetFileTypeFromHandle(file.io(), file.handle());
    file.rewind();
    return plugin != FIF_UNKNOWN ? plugin : pluginOfName(format);
}

bool FreeimageSurfaceCodec::doRead(QSharedPointer<Surface>& surface, SurfaceCodecOptions* options)
{
    auto const plugin = pluginOfContent(m_device, m_format);
    if (plugin == FIF_BMP) {
        QByteArray bytes = plainBmp(m_device);
        QBuffer buffer(&bytes);
        if (!bytes.isEmpty() && buffer.open(QIODevice::ReadOnly))
            return readFrom(buffer, plugin, surface, options);
    }
    return readFrom(m_device, plugin, surface, options);
}

bool FreeimageSurfaceCodec::readFrom(QIODevice& device, FreeImageFormat format,
                                     QSharedPointer<Surface>& surface, SurfaceCodecOptions* options)
{
    auto const mgr = m_mgr.lock();
    auto const plugin = FREE_IMAGE_FORMAT(format);
    if (!mgr || plugin == FIF_UNKNOWN)
        return false;
    FreeImage_SetOutputMessage(reportMessage);
    Bitmap bitmap;
    {
        auto const locker = mgr->getLocker(plugin);
        bitmap = loadBitmap(plugin, device);
    }
    if (!bitmap || !FreeImage_HasPixels(bitmap.get()))
        return false;
    if (options != nullptr)
        readMetadata(bitmap.get(), *options);
    surface = surfaceFromBitmap(std::move(bitmap));
    // PFM files begin with the bottom row; the library takes it for the top one.
    if (plugin == FIF_PFM && !surface.isNull())
        surface->mirror();
    return !surface.isNull();
}

bool FreeimageSurfaceCodec::doWrite(QSharedPointer<Surface> const& surface,
                                    SurfaceCodecOptions const* options)
{
    auto const mgr = m_mgr.lock();
    auto const plugin = FREE_IMAGE_FORMAT(pluginOfName(m_format));
    Target target;
    if (!mgr || plugin == FIF_UNKNOWN || !chooseTarget(*mgr, plugin, surface, target))
        return false;
    FreeImage_SetOutputMessage(reportMessage);
    Bitmap bitmap = bitmapFromSurface(*surface, target.format);
    if (bitmap && !target.custom)
        bitmap = settleDepth(std::move(bitmap), plugin);
    if (!bitmap)
        return false;
    if (options != nullptr)
        writeMetadata(bitmap.get(), *options);
    int const flags = options != nullptr ? saveFlags(plugin, *options) : 0;
    using Writer = FreeImageDevice::Writer;
    FreeImageDevice file(m_device, plugin == FIF_PNG ? Writer::EndsByException : Writer::LooksAtCounts);
    auto const locker = mgr->getLocker(plugin);
    if (target.custom)
        return target.custom->save(file.io(), bitmap.get(), file.handle(), 0, flags, nullptr);
    try {
        return FreeImage_SaveToHandle(plugin, bitmap.get(), file.io(), file.handle(), flags) != FALSE;
    } catch (char const*) {
        return false;
    }
}

} // namespace Orn::Image::Codec
