#pragma once

#include "orncommon/gui/pixmap/thumbnail.h"
#include "orncommon/image/task/surfacetask.h"

#include <QByteArray>
#include <QObject>
#include <QPixmap>

namespace Orn::Gui {

/// Makes a pixmap on the thread that runs it.
class QPixmapGeneratorTask : public QObject, public Image::Core::SurfaceTask
{
    Q_OBJECT

public:
    explicit QPixmapGeneratorTask(ThumbnailOptions const& options) : m_options(options) {}

Q_SIGNALS:
    /// From the thread of the task, unless it was cancelled. A null pixmap tells of a failure.
    void pixmapMade(QPixmap const& pixmap);

protected:
    ThumbnailOptions const& options() const { return m_options; }
    virtual QImage makeImage() = 0;

private:
    /// Emits the pixmap; there is no surface to keep.
    Image::Core::SharedSurface work() final;

    ThumbnailOptions m_options;
};

/// Of a pixmap that is there, scaled and flipped. To be made on the main thread.
class QPixmapGeneratorJobFromPixmap : public QPixmapGeneratorTask
{
    Q_OBJECT

public:
    QPixmapGeneratorJobFromPixmap(QPixmap const& pixmap, ThumbnailOptions const& options)
        : QPixmapGeneratorTask(options), m_image(pixmap.toImage())
    {
    }

protected:
    QImage makeImage() override;

private:
    QImage m_image;
};

/// Of a drawing in the text of an SVG file, on transparent ground.
class QPixmapGeneratorJobFromSVGContent : public QPixmapGeneratorTask
{
    Q_OBJECT

public:
    QPixmapGeneratorJobFromSVGContent(QByteArray const& content, ThumbnailOptions const& options)
        : QPixmapGeneratorTask(options), m_content(content)
    {
    }

protected:
    QImage makeImage() override;

private:
    QByteArray m_content;
};

/// Of the surface of another task, which is run first if it has not been.
class QPixmapGeneratorJobFromTask : public QPixmapGeneratorTask
{
    Q_OBJECT

public:
    QPixmapGeneratorJobFromTask(QSharedPointer<Image::Core::SurfaceTask> const& task,
                                ThumbnailOptions const& options)
        : QPixmapGeneratorTask(options), m_task(task)
    {
    }

protected:
    QImage makeImage() override;

private:
    QSharedPointer<Image::Core::SurfaceTask> m_task;
};

} // namespace Orn::Gui
