#include "orncommon/gui/pixmap/thumbnail.h"

#include "orncommon/image/qimageconversion.h"

#include <optional>

namespace Orn::Gui {

using namespace Image::Core;

namespace {

std::optional<ColorManagement::PixelFormat> transformable(QImage::Format format)
{
    switch (format) {
    case QImage::Format_RGB888:
        return ColorManagement::PixelFormat::RGB8;
    case QImage::Format_RGBA8888:
        return ColorManagement::PixelFormat::RGBA8;
    default:
        return {};
    }
}

SharedSurface scaled(SharedSurface const& surface, ThumbnailOptions const& options)
{
    QSize const own(int(surface->width()), int(surface->height()));
    SharedSurface result = surface;
    if (options.size.isValid() && options.size != own) {
        rescaleCopy(*surface, result = {}, unsigned(options.size.width()), unsigned(options.size.height()),
                    ScaleFilter::Bicubic);
        if (options.isFlipped && !result.isNull())
            result->mirror();
    } else if (options.isFlipped) {
        deepCopyMirrored(*surface, result = {});
    }
    return result;
}

} // namespace

QImage thumbnailOf(SharedSurface const& surface, ThumbnailOptions const& options)
{
    if (surface.isNull() || surface->isEmpty())
        return {};
    QImage image = surfaceToQImage(scaled(surface, options));
    auto const format = transformable(image.format());
    if (format && options.transform && !options.transform->isNoOp())
        options.transform->apply(unsigned(image.width()), unsigned(image.height()), *format,
                                 long(image.bytesPerLine()), image.bits());
    return image;
}

} // namespace Orn::Gui
