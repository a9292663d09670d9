#include "orncommon/gui/pixmap/qpixmapgeneratortask.h"

#include <QPainter>
#include <QSvgRenderer>

namespace Orn::Gui {

Image::Core::SharedSurface QPixmapGeneratorTask::work()
{
    QPixmap const pixmap = QPixmap::fromImage(makeImage());
    if (!isCancelled())
        Q_EMIT pixmapMade(pixmap);
    return {};
}

QImage QPixmapGeneratorJobFromPixmap::makeImage()
{
    QSize const size = options().size.isValid() ? options().size : m_image.size();
    QImage const scaled = m_image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    return options().isFlipped ? scaled.mirrored() : scaled;
}

QImage QPixmapGeneratorJobFromSVGContent::makeImage()
{
    QSvgRenderer drawing(m_content);
    if (!drawing.isValid())
        return {};
    QImage image(options().size.isValid() ? options().size : drawing.defaultSize(),
                 QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return {};
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawing.render(&painter);
    painter.end();
    return options().isFlipped ? image.mirrored() : image;
}

QImage QPixmapGeneratorJobFromTask::makeImage()
{
    m_task->run();
    Image::Core::SurfaceTask::ReadAccess const access(*m_task);
    return thumbnailOf(access.surface(), options());
}

} // namespace Orn::Gui
