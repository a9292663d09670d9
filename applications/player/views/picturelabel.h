#pragma once

#include <QImage>
#include <QLabel>
#include <QPixmap>

namespace Zph::Applications::Player {

/// The label that shows a picture at a zoom, or a text in its place.
///
/// A picture that is shrunk is scaled once, when it is set. Any other is kept as it is and only the part that
/// a paint asks for is drawn, so that a big picture at 100 or 1600 percent costs no more than the window.
class PictureLabel : public QLabel
{
    Q_OBJECT

public:
    explicit PictureLabel(QWidget* parent = nullptr);

    /// Shows the picture at this size and resizes the label to it. The overlay is written across its centre.
    void setPicture(const QImage& picture, const QSize& size, bool smooth, const QString& overlay);
    /// Shows a text in this pixel size; 0 is the default font.
    void setMessage(const QString& text, int pixelSize = 0);

signals:
    /// The left button went down on the picture, or moved while down.
    void pointPicked(const QPoint& position);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    void paintPicture(QPainter& painter, const QRect& exposed) const;

    QImage m_kept; // null where the picture is shown smaller than it is
    QPixmap m_shrunk;
    bool m_smooth = false;
    QString m_overlay;
};

} // namespace Zph::Applications::Player
