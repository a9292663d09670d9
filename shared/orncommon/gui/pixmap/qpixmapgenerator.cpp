#include "orncommon/gui/pixmap/qpixmapgenerator.h"

namespace Orn::Gui {

QPixmapGenerator::QPixmapGenerator(ThumbnailOptions const& options, QObject* parent)
    : QObject(parent), m_options(options)
{
}

void QPixmapGenerator::generate(QPixmap const& pixmap)
{
    startTask(new QPixmapGeneratorJobFromPixmap(pixmap, m_options));
}

void QPixmapGenerator::generateFromSVGContent(QByteArray const& content)
{
    startTask(new QPixmapGeneratorJobFromSVGContent(content, m_options));
}

void QPixmapGenerator::generate(QSharedPointer<Image::Core::SurfaceTask> const& task)
{
    startTask(new QPixmapGeneratorJobFromTask(task, m_options));
}

void QPixmapGenerator::startTask(QPixmapGeneratorTask* made)
{
    // The last to let go may be a thread of the pool, and the object lives here.
    QSharedPointer<QPixmapGeneratorTask> const task(made, &QObject::deleteLater);
    cancelAll();
    // A pixmap may be on its way already when a later request comes.
    connect(
        made, &QPixmapGeneratorTask::pixmapMade, this,
        [this, request = ++m_requests](QPixmap const& pixmap) {
            if (request == m_requests)
                Q_EMIT pixmapGenerated(pixmap);
        },
        Qt::QueuedConnection);
    start(task);
}

} // namespace Orn::Gui
