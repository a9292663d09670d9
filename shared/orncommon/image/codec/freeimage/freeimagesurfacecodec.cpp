#include "orncommon/image/codec/freeimage/freeimagesurfacecodec.h"

#include "orncommon/image/codec/freeimage/crediblesize.h"
#include "orncommon/image/codec/freeimage/freeimagebitmaps.h"
#include "orncommon/image/codec/freeimage/freeimageio.h"
#include "orncommon/image/codec/freeimage/freeimagemetadata.h"
#include "orncommon/image/codec/freeimage/freeimagemgr.h"
#include "orncommon/image/codec/freeimage/freeimagesaveflags.h"
#include "orncommon/image/codec/freeimage/plainbmp.h"
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

/// Null when the file can't be read.
Bitmap loadBitmap(FREE_IMAGE_FORMAT plugin, QIODevice& device)
{
    FreeImageDevice file(device);
    if (plugin == FIF_PSD)
        file.setReader(FreeImageDevice::Reader::EndsByException);
    try {
        if (!hasCredibleSize(plugin, file))
            return {};
        Bitmap bitmap(FreeImage_LoadFromHandle(plugin, file.io(), file.handle(), 0));
        return file.isCutShort() ? nullptr : std::move(bitmap);
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
    BitmapToSave made = bitmapFromSurface(*surface, target.format);
    Bitmap& bitmap = made.bitmap;
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
    bool const isRunLengthBmp =
        plugin == FIF_BMP && (flags & BMP_SAVE_RLE) != 0 && FreeImage_GetBPP(bitmap.get()) == 8;
    try {
        return FreeImage_SaveToHandle(plugin, bitmap.get(), file.io(), file.handle(), flags) != FALSE &&
               (!isRunLengthBmp || stateRunLengthSizes(m_device, file.start()));
    } catch (char const*) {
        return false;
    }
}

} // namespace Orn::Image::Codec
