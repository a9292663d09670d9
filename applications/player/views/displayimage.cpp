#include "displayimage.h"

#include "orncommon/image/qimageconversion.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace Zph::Applications::Player {

namespace {

template<std::size_t Size>
void copyPixelsOf(std::uint8_t* to, const std::uint8_t* from, const std::vector<std::size_t>& offsets)
{
    for (const std::size_t offset : offsets) {
        std::memcpy(to, from + offset, Size);
        to += Size;
    }
}

/// Gathers pixels of a row. The usual sizes are constants, so that a pixel is one move.
void copyPixels(std::uint8_t* to, const std::uint8_t* from, const std::vector<std::size_t>& offsets,
                std::size_t pixelSize)
{
    switch (pixelSize) {
    case 1:
        return copyPixelsOf<1>(to, from, offsets);
    case 2:
        return copyPixelsOf<2>(to, from, offsets);
    case 4:
        return copyPixelsOf<4>(to, from, offsets);
    case 8:
        return copyPixelsOf<8>(to, from, offsets);
    case 16:
        return copyPixelsOf<16>(to, from, offsets);
    default:
        for (const std::size_t offset : offsets) {
            std::memcpy(to, from + offset, pixelSize);
            to += pixelSize;
        }
    }
}

} // namespace

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

QImage sampledImage(const QSharedPointer<Orn::Surfaces::Surface>& surface, const QSize& size)
{
    using namespace Orn::Surfaces;
    const std::size_t pixelSize = !surface || surface->isEmpty() ? 0 : getPixelSize(surface->format());
    if (pixelSize == 0 || size.isEmpty())
        return {};
    SurfaceDescription description = surface->description();
    description.width = unsigned(size.width());
    description.height = unsigned(size.height());
    description.pitch = 0;
    const auto sampled = QSharedPointer<Surface>::create(description, surfaceAlignment);
    if (sampled->isEmpty())
        return {};
    const auto nearest = [](unsigned at, unsigned count, unsigned of) {
        return unsigned((2 * std::uint64_t(at) + 1) * of / (2 * std::uint64_t(count)));
    };
    std::vector<std::size_t> offsets;
    for (unsigned x = 0; x < description.width; ++x)
        offsets.push_back(nearest(x, description.width, surface->width()) * pixelSize);
    for (unsigned y = 0; y < description.height; ++y)
        copyPixels(sampled->row(y), surface->row(nearest(y, description.height, surface->height())), offsets,
                   pixelSize);
    return displayImage(sampled);
}

} // namespace Zph::Applications::Player
