#include "applications/player/images/widgets/picturethumbnail.h"

#include "applications/player/images/imageinput.h"
#include "orncommon/gui/pixmap/qpixmapgenerator.h"
#include "orncommon/image/surfaceoperations.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Zph::Applications::Player {

namespace {

using namespace Orn::Surfaces;
using SurfacePtr = QSharedPointer<Surface>;

constexpr unsigned sampledSide = 256;

// Every so manieth pixel of a large picture: filtering all of them takes as long as reading the file did.
SurfacePtr sampled(const SurfacePtr& source)
{
    const unsigned step = std::max(source->width(), source->height()) / sampledSide;
    if (step <= 1)
        return source;
    SurfaceDescription description((source->width() + step - 1) / step, (source->height() + step - 1) / step,
                                   source->format());
    description.flags = source->description().flags;
    auto result = SurfacePtr::create(description, surfaceAlignment);
    const std::size_t size = getPixelSize(source->format());
    for (unsigned y = 0; y < result->height(); ++y)
        for (unsigned x = 0; x < result->width(); ++x)
            std::memcpy(result->row(y) + x * size, source->row(y * step) + x * step * size, size);
    return result;
}

SurfacePtr thumbnail(const SurfacePtr& picture, const ImageOptions& options, int side)
{
    using namespace Orn::Image::Core;
    const SurfacePtr part = croppedImage(picture, options);
    if (!part || part->isEmpty())
        return {};
    const QSize size = QSize(int(part->width()), int(part->height())).scaled(side, side, Qt::KeepAspectRatio);
    SurfacePtr colours = sampled(part);
    SurfacePtr encoded; // floats are linear, and too dark on a screen
    if (isFloatFormat(colours->format()) && linearToSRGB(*colours, encoded))
        colours = encoded;
    const ConversionParameters opaque{255};
    SurfacePtr shown, result;
    if (convertTo(*colours, shown, RGBA8, &opaque))
        rescaleCopy(*shown, result, unsigned(std::max(1, size.width())), unsigned(std::max(1, size.height())),
                    ScaleFilter::Bicubic);
    return result;
}

} // namespace

PictureThumbnail::PictureThumbnail(QObject* parent)
    : QObject(parent), m_generator(new Orn::Gui::QPixmapGenerator({}, this))
{
    connect(m_generator, &Orn::Gui::QPixmapGenerator::pixmapGenerated, this, &PictureThumbnail::finish);
}

void PictureThumbnail::show(const SharedSurface& picture, const ImageOptions& options, int side)
{
    const Request request{picture, options, side};
    if (m_isBusy)
        m_waiting = request;
    else
        start(request);
}

void PictureThumbnail::start(const Request& request)
{
    if (!request.picture) {
        emit changed({});
        return;
    }
    m_isBusy = true;
    m_generator->generate(Orn::Image::Core::makeSurfaceTask(
        [request] { return thumbnail(request.picture, request.options, request.side); }));
}

void PictureThumbnail::finish(const QPixmap& pixmap)
{
    m_isBusy = false;
    const std::optional<Request> next = std::exchange(m_waiting, std::nullopt);
    if (!next || next->picture)
        emit changed(pixmap);
    if (next)
        start(*next);
}

} // namespace Zph::Applications::Player
