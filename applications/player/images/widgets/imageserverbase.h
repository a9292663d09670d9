#pragma once

#include "applications/player/images/imagesequence.h"
#include "applications/player/images/widgets/filefollower.h"
#include "orncommon/surfaces/surface.h"

#include <QSharedPointer>

class QWidget;

namespace Zph::Applications::Player {

// What an image input shows: a picture for each time. Main thread.
class ImageServerBase : public QObject
{
    Q_OBJECT

public:
    using ImagePtr = QSharedPointer<Orn::Surfaces::Surface>;

    // There is a picture.
    virtual bool isValid() const = 0;
    // 0 where the picture is the same at all times.
    virtual float duration() const = 0;
    // Of the time asked for last; null for none.
    virtual ImagePtr surface() const = 0;
    // The server's own options, for a dialog to host: the dialog sends it an event applyPanel when they are
    // to count. Null for none. Owned by `parent`.
    virtual QWidget* createPanel(QWidget* parent) = 0;
    // Goes to the picture of a time in seconds. True when it is another one.
    virtual bool requireFrameNotification(float time, TimeClamping clamping) = 0;
    // Gives surface(), and whether there is one.
    virtual bool grabFrame(ImagePtr& image) = 0;

    // surface() is what its file holds; not so while that is gone or can't be read.
    bool isUpToDate() const { return m_isUpToDate; }

    // A type of event.
    static constexpr int applyPanel = 1010;

signals:
    // The file of the picture has changed, and surface() is what it holds now.
    void fileChangedNotification();
    // The file is gone or can't be read any more; surface() stays.
    void fileLostNotification();

protected:
    explicit ImageServerBase(QObject* parent);

    // Reads a picture and follows its file. False, and the picture of before stays, when it can't be read.
    bool readSurface(const QString& path);
    void setSurface(const ImagePtr& surface) { m_currentSurface = surface; }
    const ImagePtr& currentSurface() const { return m_currentSurface; }

private:
    void reread();
    void setLost();

    QString m_path;
    FileFollower m_watcher;
    bool m_isUpToDate = false;
    ImagePtr m_currentSurface;
};

} // namespace Zph::Applications::Player
