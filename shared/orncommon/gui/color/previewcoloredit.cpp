#include "orncommon/gui/color/previewcoloredit.h"

#include "orncommon/gui/color/checkerboard.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

namespace Orn::Gui {

PreviewColorEdit::PreviewColorEdit(QWidget* parent) : ColorEdit(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setToolTip(tr("Old and new color. Click the old color to take it back."));
}

void PreviewColorEdit::setOldColor(const Core::ColorRGBAf& color)
{
    m_oldColor = color;
    update();
}

QRect PreviewColorEdit::oldRect() const
{
    return {0, 0, width() / 2, height()};
}

void PreviewColorEdit::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath clip;
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    clip.addRoundedRect(frame, 3, 3);
    painter.setClipPath(clip);
    painter.fillRect(rect(), checkerboardBrush());
    painter.fillRect(oldRect(), toQColor(m_oldColor));
    painter.fillRect(rect().adjusted(width() / 2, 0, 0, 0), toQColor(color()));
    painter.setClipping(false);
    painter.setPen(QColor(0x1a, 0x1a, 0x1a));
    painter.drawRoundedRect(frame, 3, 3);
}

void PreviewColorEdit::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && oldRect().contains(event->pos()))
        changeColor(m_oldColor);
}

} // namespace Orn::Gui
