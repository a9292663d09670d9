#include "displayimage.h"

#include "orncommon/image/qimageconversion.h"

namespace Zph::Applications::Player {

QImage displayImage(const QSharedPointer<Orn::Surfaces::Surface>& surface)
{
    using namespace Orn::Surfaces;
    if (!surface || surface->isEmpty())
        return {};
    const SurfaceDescription& description = surface->description();
    QImage::Format format = QImage::Format_Invalid;
    if (description.format == RGBA8)
        format = QImage::Format_RGBA8888;
    else if (description.format == L8)
        format = QImage::Format_Grayscale8;
    if (format == QImage::Format_Invalid)
        return Orn::Image::Core::surfaceToQImage(surface);
    auto* keeper = new QSharedPointer<Surface>(surface);
    return QImage(
        static_cast<const uchar*>(surface->data()), int(description.width), int(description.height),
        int(description.pitch), format,
        [](void* kept) { delete static_cast<QSharedPointer<Surface>*>(kept); }, keeper);
}

} // namespace Zph::Applications::Player
