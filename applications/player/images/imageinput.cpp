#include "applications/player/images/imageinput.h"

#include "applications/player/session/textureconversion.h"
#include "orncommon/image/codec/surfacecodec.h"
#include "orncommon/image/codec/surfacecodecmanager.h"
#include "orncommon/image/surfaceoperations.h"

#include <QFile>

#include <algorithm>
#include <cstring>
#include <limits>

// Q_INIT_RESOURCE declares a function of the global namespace, so it may not stand in another.
static void initPictures()
{
    Q_INIT_RESOURCE(playerimages);
}

namespace Zph::Applications::Player {

namespace {

using namespace Orn::Surfaces;
using SurfacePtr = QSharedPointer<Surface>;

constexpr int longestSide = std::numeric_limits<quint16>::max();
constexpr qint64 mostPixels = qint64(1) << 28; // as many as a square of 16384

SurfacePtr readDefaultPicture()
{
    initPictures();
    QFile file(QStringLiteral(":/zph/applications/player/images/defaultinput.png"));
    SurfacePtr picture;
    if (!file.open(QIODevice::ReadOnly))
        return picture;
    const auto reader = Orn::Image::Codec::SurfaceCodecManager::instance().createReader(file, "png");
    if (reader)
        reader->read(picture, nullptr);
    return picture;
}

QSize sizeOf(const Surface& surface)
{
    return {int(surface.width()), int(surface.height())};
}

// Repeats the first bytes of a row, `period` of them, up to its end: what is there is doubled in each turn.
void repeat(std::uint8_t* row, std::size_t period, std::size_t bytes)
{
    for (std::size_t done = period; done < bytes; done *= 2)
        std::memcpy(row + done, row, std::min(done, bytes - done));
}

// Puts the picture at every multiple of its size. Both are of one format.
void tile(const Surface& source, Surface& canvas)
{
    const std::size_t bytes = canvas.lineSize();
    const std::size_t period = source.lineSize();
    for (unsigned y = 0; y < canvas.height(); ++y) {
        if (y >= source.height()) {
            std::memcpy(canvas.row(y), canvas.row(y - source.height()), bytes);
            continue;
        }
        std::memcpy(canvas.row(y), source.row(y), std::min(period, bytes));
        repeat(canvas.row(y), period, bytes);
    }
}

// Null when there is no memory.
SurfacePtr onCanvas(const SurfacePtr& source, const QSize& size, bool mosaic, const QColor& padding)
{
    if (size == sizeOf(*source))
        return source;
    SurfaceDescription description(unsigned(size.width()), unsigned(size.height()), source->format());
    description.alphaUse = source->description().alphaUse;
    description.flags = source->description().flags;
    auto canvas = SurfacePtr::create(description, surfaceAlignment);
    if (canvas->isEmpty())
        return {};
    if (mosaic) {
        tile(*source, *canvas);
        return canvas;
    }
    if (sizeOf(*source).boundedTo(size) != size)
        Orn::Image::Core::clear(*canvas, float(padding.redF()), float(padding.greenF()),
                                float(padding.blueF()), float(padding.alphaF()));
    Orn::Image::Core::embed(*source, canvas, QPoint(0, 0));
    return canvas;
}

} // namespace

QSize canvasSize(const QSize& source, const QSize& wanted, quint32 flags)
{
    const quint32 mode = flags & ImageOptions::ModeMask;
    QSize size = source;
    if (mode & ImageOptions::Exact)
        size = wanted;
    else if (mode == ImageOptions::KeepAspect)
        size = wanted.scaled(source, Qt::KeepAspectRatioByExpanding);
    const bool isSound = !size.isEmpty() && std::max(size.width(), size.height()) <= longestSide &&
                         qint64(size.width()) * size.height() <= mostPixels;
    return isSound ? size : source;
}

SurfacePtr croppedImage(const SurfacePtr& source, const ImageOptions& options)
{
    if (!source || options.cropLeft < 0 || options.cropTop < 0)
        return source;
    const QSize size = sizeOf(*source) - QSize(options.cropLeft, options.cropTop) -
                       QSize(std::max(options.cropRight, 0), std::max(options.cropBottom, 0));
    if (size == sizeOf(*source))
        return source;
    return size.isEmpty()
               ? SurfacePtr()
               : Orn::Image::Core::crop(*source, QRect(QPoint(options.cropLeft, options.cropTop), size));
}

void ImageInput::setSource(const SharedSurface& source)
{
    m_source = source;
    drop();
}

void ImageInput::setOptions(const ImageOptions& options)
{
    m_options = options;
    drop();
}

void ImageInput::drop()
{
    m_prepared.reset();
    m_holder.reset();
    m_preparedFor = QSize();
}

const VellorTexture* ImageInput::prepare(quint32 width, quint32 height)
{
    const QSize wanted(int(std::min(width, quint32(longestSide))),
                       int(std::min(height, quint32(longestSide))));
    if (m_preparedFor != wanted) {
        SharedSurface source = croppedImage(m_source, m_options);
        quint32 flags = m_options.flags;
        if (!source) {
            source = readDefaultPicture();
            flags = ImageOptions::Exact | ImageOptions::Mosaic;
        }
        if (!source)
            return nullptr;
        m_prepared = onCanvas(source, canvasSize(sizeOf(*source), wanted, flags),
                              flags & ImageOptions::Mosaic, m_options.paddingColor);
        m_texture = textureFromSurface(m_prepared, m_holder);
        m_preparedFor = wanted;
    }
    return m_texture.buffer ? &m_texture : nullptr;
}

} // namespace Zph::Applications::Player
