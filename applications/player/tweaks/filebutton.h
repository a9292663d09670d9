#pragma once

#include <QPixmap>
#include <QPushButton>

namespace Zph::Applications::Player {

// A button that names a file, shortened in its middle to the room that there is, and shows what is in it. The
// names of files leave the layout as it is.
class FileButton : public QPushButton
{
    Q_OBJECT

public:
    static constexpr int thumbnailSide = 32; // pixels, before the scaling of the screen

    explicit FileButton(QWidget* parent);

    // Shown as it is, with every "&".
    void setFileName(const QString& name);

    // Keeps a place for a thumbnail ahead of the name.
    void setThumbnailShown(bool shown);
    // Drawn over a checkerboard; null leaves the place empty. At most thumbnailSide wide and high.
    void setThumbnail(const QPixmap& thumbnail);
    // Pale, with a property "missing" for the style sheet: the file isn't there.
    void setMissing(bool missing);

    const QPixmap& thumbnail() const { return m_thumbnail; }
    bool isMissing() const { return m_isMissing; }

    QSize sizeHint() const override { return minimumSizeHint(); }
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void drawThumbnail(QPainter& painter) const;
    QRect thumbnailPlace() const;
    void describe();

    QString m_fileName;
    QPixmap m_thumbnail;
    bool m_isThumbnailShown = false;
    bool m_isMissing = false;
};

} // namespace Zph::Applications::Player
