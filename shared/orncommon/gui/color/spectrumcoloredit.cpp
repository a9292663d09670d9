#include "orncommon/gui/color/spectrumcoloredit.h"

#include "orncommon/gui/color/checkerboard.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

namespace Orn::Gui {

namespace {
// The field is smooth: a small picture, scaled, is all that the eye can ask for.
constexpr int fieldWidth = 180;
constexpr int fieldHeight = 64;
constexpr float maximumHue = 0.9999F; // a full turn would be red again and throw the mark to the left
constexpr float darkestShown = 0.2F;  // below, the field stays readable while the colour goes on to black
} // namespace

SpectrumColorEdit::SpectrumColorEdit(QWidget* parent) : ColorEdit(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::CrossCursor);
}

void SpectrumColorEdit::updateFromColor()
{
    // While the mark is dragged the rounding of the way back from RGB must not move it.
    const Core::ColorRGBAf own = toRGB(m_hsv, color().a);
    const auto near = [](float x, float y) { return qAbs(x - y) < 1e-6F; };
    if (!near(own.r, color().r) || !near(own.g, color().g) || !near(own.b, color().b))
        m_hsv = toHSV(color(), m_hsv);
    update();
}

const QImage& SpectrumColorEdit::field()
{
    const float value = qMax(darkestShown, m_hsv.v);
    if (m_fieldValue == value)
        return m_field;
    m_fieldValue = value;
    m_field = QImage(fieldWidth, fieldHeight, QImage::Format_RGB32);
    for (int y = 0; y < fieldHeight; ++y) {
        auto* line = reinterpret_cast<QRgb*>(m_field.scanLine(y));
        const float saturation = 1.0F - static_cast<float>(y) / (fieldHeight - 1);
        for (int x = 0; x < fieldWidth; ++x)
            line[x] =
                toQColor(toRGB({static_cast<float>(x) / (fieldWidth - 1), saturation, value}, 1.0F)).rgb();
    }
    return m_field;
}

void SpectrumColorEdit::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QPainterPath clip;
    clip.addRoundedRect(frame, 3, 3);
    painter.setClipPath(clip);
    painter.drawImage(rect(), field());
    const QPointF mark(frame.left() + m_hsv.h * frame.width(), frame.bottom() - m_hsv.s * frame.height());
    painter.setPen(QPen(QColor(0, 0, 0, 200), 3.5));
    painter.drawEllipse(mark, 5, 5);
    painter.setPen(QPen(Qt::white, 1.5));
    painter.drawEllipse(mark, 5, 5);
    painter.setClipping(false);
    painter.setPen(hasFocus() ? palette().highlight().color().lighter(140) : QColor(0x1a, 0x1a, 0x1a));
    painter.drawRoundedRect(frame, 3, 3);
}

void SpectrumColorEdit::pick(const QPoint& position)
{
    const float x = static_cast<float>(position.x()) / qMax(1, width() - 1);
    const float y = static_cast<float>(position.y()) / qMax(1, height() - 1);
    changeHueAndSaturation(x, 1.0F - y);
}

void SpectrumColorEdit::changeHueAndSaturation(float hue, float saturation)
{
    m_hsv.h = qBound(0.0F, hue, maximumHue);
    m_hsv.s = qBound(0.0F, saturation, 1.0F);
    changeColor(toRGB(m_hsv, color().a));
    update();
}

void SpectrumColorEdit::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    Q_EMIT editBegun();
    pick(event->pos());
}

void SpectrumColorEdit::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons().testFlag(Qt::LeftButton))
        pick(event->pos());
}

void SpectrumColorEdit::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        Q_EMIT editEnded();
}

void SpectrumColorEdit::keyPressEvent(QKeyEvent* event)
{
    const float step = event->modifiers().testFlag(Qt::ShiftModifier) ? 0.1F : 0.01F;
    switch (event->key()) {
    case Qt::Key_Left:
        return changeHueAndSaturation(m_hsv.h - step, m_hsv.s);
    case Qt::Key_Right:
        return changeHueAndSaturation(m_hsv.h + step, m_hsv.s);
    case Qt::Key_Up:
        return changeHueAndSaturation(m_hsv.h, m_hsv.s + step);
    case Qt::Key_Down:
        return changeHueAndSaturation(m_hsv.h, m_hsv.s - step);
    default:
        ColorEdit::keyPressEvent(event);
    }
}

} // namespace Orn::Gui
