#include "picturearea.h"

#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>

namespace Zph::Applications::Player {

namespace {

constexpr int kNotch = 120; // in eighths of a degree

} // namespace

void PictureArea::scrollBy(const QPoint& distance)
{
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() + distance.x());
    verticalScrollBar()->setValue(verticalScrollBar()->value() + distance.y());
}

void PictureArea::resizeEvent(QResizeEvent* event)
{
    QScrollArea::resizeEvent(event);
    emit resized();
}

void PictureArea::wheelEvent(QWheelEvent* event)
{
    if (!(event->modifiers() & Qt::ControlModifier)) {
        QScrollArea::wheelEvent(event);
        return;
    }
    emit zoomAsked(event->angleDelta().y() / kNotch, event->position().toPoint());
    event->accept();
}

void PictureArea::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton)
        m_dragged = event->globalPos();
    else
        QScrollArea::mousePressEvent(event);
}

void PictureArea::mouseMoveEvent(QMouseEvent* event)
{
    if (!(event->buttons() & Qt::MiddleButton)) {
        QScrollArea::mouseMoveEvent(event);
        return;
    }
    scrollBy(m_dragged - event->globalPos());
    m_dragged = event->globalPos();
}

} // namespace Zph::Applications::Player
