#pragma once

#include <QScrollArea>

namespace Zph::Applications::Player {

/// The place where a picture scrolls: the middle button drags it, Ctrl and the wheel ask for another zoom.
class PictureArea : public QScrollArea
{
    Q_OBJECT

public:
    using QScrollArea::QScrollArea;

    /// Moves what is seen by so many pixels, as far as there is something.
    void scrollBy(const QPoint& distance);

signals:
    /// The wheel was turned by `steps` notches, away from the user being positive, over this point of the
    /// viewport.
    void zoomAsked(int steps, const QPoint& anchor);
    /// The viewport has its new size.
    void resized();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    QPoint m_dragged; // where the middle button was last, on the screen
};

} // namespace Zph::Applications::Player
