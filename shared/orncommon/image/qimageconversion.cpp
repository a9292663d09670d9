#include "orncommon/image/qimageconversion.h"

#include <QDebug>

namespace Orn::Image::Core {

using Surfaces::SurfaceDescription;

namespace {

struct Display
{
    PixelFormat converted;
    QImage::Format format;
};

Display displayOf(PixelFormat format)
{
    switch (format) {
    case Surfaces::L8:
    case Surfaces::L16:
    case Surfaces::L16F:
    case Surfaces::L32F:
        return {Surfaces::L8, QImage::Format_Grayscale8};
    case Surfaces::RGB8:
    case Surfaces::BGR8:
        return {Surfaces::RGB8, QImage::Format_RGB888};
    case Surfaces::RGBA8:
    case Surfaces::BGRA8:
    case Surfaces::RGBA16:
    case Surfaces::RGBA16F:
    case Surfaces::RGB32F:
    case Surfaces::RGBA32F:
        return {Surfaces::RGBA8, QImage::Format_RGBA8888};
    default:
        return {Surfaces::PixelFormat_Invalid, QImage::Format_Invalid};
    }
}

/// The surface's twin of an image format; none for one that has to be converted first.
PixelFormat twinOf(QImage::Format format)
{
    switch (format) {
    case QImage::Format_Grayscale8:
        return Surfaces::L8;
    case QImage::Format_Grayscale16:
        return Surfaces::L16;
    case QImage::Format_RGB888:
        return Surfaces::RGB8;
    case QImage::Format_BGR888:
        return Surfaces::BGR8;
    case QImage::Format_RGBA8888:
        return Surfaces::RGBA8;
    case QImage::Format_RGBA64:
        return Surfaces::RGBA16;
    case QImage::Format_ARGB32: // 0xAARRGGBB as a little-endian word
        return Surfaces::BGRA8;
    default:
        return Surfaces::PixelFormat_Invalid;
    }
}

} // namespace

QImage surfaceToQImage(SharedSurface const& surface)
{
    if (surface.isNull() || surface->isEmpty())
        return {};
    Display const display = displayOf(surface->format());
    if (display.format == QImage::Format_Invalid) {
        qWarning("[WARNING] surfaceToQImage: Unsupported format !");
        return {};
    }
    QImage image(int(surface->width()), int(surface->height()), display.format);
    if (image.isNull())
        return {};
    SurfaceDescription description(surface->width(), surface->height(), display.converted);
    description.pitch = std::uint64_t(image.bytesPerLine());
    Surface pixels(image.bits(), description);
    // The conversion writes the image itself: no picture in between.
    Surfaces::convertTo(*surface, pixels, ConversionParameters{255});
    return image;
}

SharedSurface qImageToSurface(QImage const& image)
{
    if (image.isNull())
        return {};
    PixelFormat const format = twinOf(image.format());
    if (format == Surfaces::PixelFormat_Invalid) {
        SharedSurface surface = qImageToSurface(image.convertToFormat(QImage::Format_ARGB32));
        if (!surface.isNull() && !image.hasAlphaChannel())
            surface->setAlphaUse(SurfaceDescription::AlphaAbsent);
        return surface;
    }
    SurfaceDescription description(unsigned(image.width()), unsigned(image.height()), format);
    description.pitch = std::uint64_t(image.bytesPerLine());
    description.alphaUse =
        image.hasAlphaChannel() ? SurfaceDescription::AlphaCarried : SurfaceDescription::AlphaAbsent;
    return clone(Surface(const_cast<uchar*>(image.constBits()), description));
}

} // namespace Orn::Image::Core
