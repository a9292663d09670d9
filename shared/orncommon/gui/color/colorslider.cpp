#include "orncommon/gui/color/colorslider.h"

#include "orncommon/gui/color/checkerboard.h"

#include <QKeyEvent>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>

namespace Orn::Gui {

namespace {
constexpr int thickness = 16;
constexpr int handleWidth = 6;
constexpr float keyStep = 1.0F / 255.0F;
} // namespace

float& channelOf(Core::ColorRGBAf& color, ColorSlider::Channel channel)
{
    switch (channel) {
    case ColorSlider::Channel::Red:
        return color.r;
    case ColorSlider::Channel::Green:
        return color.g;
    case ColorSlider::Channel::Blue:
        return color.b;
    default:
        return color.a;
    }
}

ColorSlider::ColorSlider(Channel channel, Qt::Orientation orientation, QWidget* parent)
    : ColorEdit(parent), m_channel(channel), m_orientation(orientation)
{
    setFocusPolicy(Qt::StrongFocus);
    const bool horizontal = orientation == Qt::Horizontal;
    setSizePolicy(horizontal ? QSizePolicy::Expanding : QSizePolicy::Fixed,
                  horizontal ? QSizePolicy::Fixed : QSizePolicy::Expanding);
}

QSize ColorSlider::sizeHint() const
{
    return m_orientation == Qt::Horizontal ? QSize(80, thickness + 4) : QSize(thickness + 4, 80);
}

float ColorSlider::value() const
{
    if (m_channel == Channel::Value)
        return m_hsv.v;
    Core::ColorRGBAf current = color();
    return qBound(0.0F, channelOf(current, m_channel), 1.0F);
}

Core::ColorRGBAf ColorSlider::colorAt(float value) const
{
    if (m_channel == Channel::Value)
        return toRGB({m_hsv.h, m_hsv.s, value}, color().a);
    Core::ColorRGBAf result = color();
    channelOf(result, m_channel) = value;
    return result;
}

void ColorSlider::updateFromColor()
{
    m_hsv = toHSV(color(), m_hsv);
    update();
}

QRectF ColorSlider::track() const
{
    return QRectF(rect()).adjusted(2.5, 2.5, -2.5, -2.5);
}

float ColorSlider::valueAt(const QPoint& position) const
{
    const QRectF bar = track();
    const double along = m_orientation == Qt::Horizontal ? (position.x() - bar.left()) / bar.width()
                                                         : (bar.bottom() - position.y()) / bar.height();
    return static_cast<float>(qBound(0.0, along, 1.0));
}

void ColorSlider::paintEvent(QPaintEvent*)
{
    const bool horizontal = m_orientation == Qt::Horizontal;
    const QRectF bar = track();
    QLinearGradient gradient(horizontal ? bar.topLeft() : bar.bottomLeft(),
                             horizontal ? bar.topRight() : bar.topLeft());
    for (const float stop : {0.0F, 1.0F}) {
        QColor color = toQColor(colorAt(stop));
        if (m_channel != Channel::Alpha)
            color.setAlpha(255);
        gradient.setColorAt(stop, color);
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (m_channel == Channel::Alpha) {
        painter.setBrush(checkerboardBrush());
        painter.drawRoundedRect(bar, 2, 2);
    }
    painter.setBrush(gradient);
    painter.setPen(hasFocus() ? palette().highlight().color().lighter(140) : QColor(0x1a, 0x1a, 0x1a));
    painter.drawRoundedRect(bar, 2, 2);

    const double room = (horizontal ? bar.width() : bar.height()) - handleWidth;
    const double at = value() * room;
    const QRectF handle =
        horizontal ? QRectF(bar.left() + at, bar.top() - 2, handleWidth, bar.height() + 4)
                   : QRectF(bar.left() - 2, bar.bottom() - at - handleWidth, bar.width() + 4, handleWidth);
    painter.setPen(QColor(0x14, 0x14, 0x14));
    painter.setBrush(isEnabled() ? QColor(underMouse() ? 0xff : 0xe4, underMouse() ? 0xff : 0xe4,
                                          underMouse() ? 0xff : 0xe4)
                                 : QColor(0x80, 0x80, 0x80));
    painter.drawRoundedRect(handle, 2, 2);
}

void ColorSlider::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    Q_EMIT editBegun();
    changeColor(colorAt(valueAt(event->pos())));
}

void ColorSlider::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons().testFlag(Qt::LeftButton))
        changeColor(colorAt(valueAt(event->pos())));
}

void ColorSlider::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        Q_EMIT editEnded();
}

void ColorSlider::keyPressEvent(QKeyEvent* event)
{
    const float step = event->modifiers().testFlag(Qt::ShiftModifier) ? 10 * keyStep : keyStep;
    if (event->key() == Qt::Key_Right || event->key() == Qt::Key_Up)
        changeColor(colorAt(qMin(1.0F, value() + step)));
    else if (event->key() == Qt::Key_Left || event->key() == Qt::Key_Down)
        changeColor(colorAt(qMax(0.0F, value() - step)));
    else
        ColorEdit::keyPressEvent(event);
}

void ColorSlider::enterEvent(QEvent*)
{
    update();
}

void ColorSlider::leaveEvent(QEvent*)
{
    update();
}

} // namespace Orn::Gui
