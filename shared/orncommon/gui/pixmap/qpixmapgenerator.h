#pragma once

#include "orncommon/gui/pixmap/qpixmapgeneratortask.h"
#include "orncommon/image/task/surfacejob.h"

#include <QObject>
#include <QPixmap>

namespace Orn::Gui {

/// Makes small pictures off the main thread. A button shows its image so:
///
///     auto* generator = new QPixmapGenerator(ThumbnailOptions{QSize(64, 64)}, button);
///     connect(generator, &QPixmapGenerator::pixmapGenerated, button, [=](QPixmap p) { button->setIcon(p);
///     }); generator->generate(makeSurfaceTask([surface] { return surface; }));
///
/// The function of makeSurfaceTask() runs on a thread of the pool: a file may be loaded there, too. What is
/// asked for later makes what was asked for earlier void. Main thread only.
class QPixmapGenerator : public QObject, public Image::Core::SurfaceJob
{
    Q_OBJECT

public:
    explicit QPixmapGenerator(ThumbnailOptions const& options, QObject* parent = nullptr);

    /// For what is asked for from now on.
    void setOptions(ThumbnailOptions const& options) { m_options = options; }

    void generate(QPixmap const& pixmap);
    void generateFromSVGContent(QByteArray const& content);
    void generate(QSharedPointer<Image::Core::SurfaceTask> const& task);

Q_SIGNALS:
    /// Once for each request that no later one made void. A null pixmap tells of a failure.
    void pixmapGenerated(QPixmap const& pixmap);

private:
    void startTask(QPixmapGeneratorTask* task);

    ThumbnailOptions m_options;
    quint64 m_requests = 0;
};

} // namespace Orn::Gui
