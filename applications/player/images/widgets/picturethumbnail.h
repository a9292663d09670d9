#pragma once

#include "applications/player/images/imageoptions.h"
#include "orncommon/surfaces/surface.h"

#include <QObject>
#include <QPixmap>
#include <QSharedPointer>

#include <optional>

namespace Orn::Gui {
class QPixmapGenerator;
}

namespace Zph::Applications::Player {

// A small likeness of the picture of an image input, made off the main thread. While one is being made, the
// last of what is asked for waits: a picture that changes all the time is shown as often as there is time.
// Main thread.
class PictureThumbnail : public QObject
{
    Q_OBJECT

public:
    using SharedSurface = QSharedPointer<Orn::Surfaces::Surface>;

    explicit PictureThumbnail(QObject* parent);

    // Of what the options' cropping leaves, with its proportions, in a square of `side` pixels. Without a
    // picture, what is asked for is nothing.
    void show(const SharedSurface& picture, const ImageOptions& options, int side);

signals:
    // With the picture's alpha. Null when there is no picture, or nothing of it that could be shown.
    void changed(const QPixmap& pixmap);

private:
    struct Request
    {
        SharedSurface picture;
        ImageOptions options;
        int side = 0;
    };

    void start(const Request& request);
    void finish(const QPixmap& pixmap);

    Orn::Gui::QPixmapGenerator* m_generator;
    bool m_isBusy = false;
    std::optional<Request> m_waiting;
};

} // namespace Zph::Applications::Player
