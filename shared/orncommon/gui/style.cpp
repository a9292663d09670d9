#include "orncommon/gui/style.h"

#include "orncommon/gui/comboboxdelegate.h"

#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QStyleOptionSlider>
#include <QtMath>

namespace Orn::Gui {

namespace {

bool holdsValue(const QObject* object)
{
    return qobject_cast<const QAbstractSpinBox*>(object) || qobject_cast<const QComboBox*>(object) ||
           (qobject_cast<const QAbstractSlider*>(object) && !qobject_cast<const QScrollBar*>(object));
}

bool liesInScrollArea(const QWidget& widget)
{
    for (const QWidget* parent = widget.parentWidget(); parent; parent = parent->parentWidget()) {
        if (qobject_cast<const QScrollArea*>(parent))
            return true;
        if (parent->isWindow())
            return false;
    }
    return false;
}

QString iconPath(QStyle::StandardPixmap pixmap)
{
    switch (pixmap) {
    case QStyle::SP_MessageBoxInformation:
        return QStringLiteral(":/orn/gui/icons/information.svg");
    case QStyle::SP_MessageBoxWarning:
        return QStringLiteral(":/orn/gui/icons/warning.svg");
    case QStyle::SP_MessageBoxCritical:
        return QStringLiteral(":/orn/gui/icons/error.svg");
    case QStyle::SP_MessageBoxQuestion:
        return QStringLiteral(":/orn/gui/icons/question.svg");
    case QStyle::SP_LineEditClearButton:
        return QStringLiteral(":/orn/gui/icons/close.svg");
    default:
        return {};
    }
}

} // namespace

Style::Style(const StyleOptions& options) : QProxyStyle(QStringLiteral("fusion")), m_options(options)
{
}

QPalette Style::standardPalette() const
{
    QPalette palette(m_options.button, m_options.window);
    palette.setColor(QPalette::WindowText, m_options.text);
    palette.setColor(QPalette::Text, m_options.text);
    palette.setColor(QPalette::ButtonText, m_options.text);
    palette.setColor(QPalette::BrightText, m_options.brightText);
    palette.setColor(QPalette::Base, m_options.base);
    palette.setColor(QPalette::AlternateBase, m_options.alternateBase);
    palette.setColor(QPalette::Highlight, m_options.selection);
    palette.setColor(QPalette::HighlightedText, m_options.brightText);
    palette.setColor(QPalette::Link, m_options.link);
    palette.setColor(QPalette::LinkVisited, m_options.link);
    palette.setColor(QPalette::ToolTipBase, m_options.toolTip);
    palette.setColor(QPalette::ToolTipText, m_options.text);
    palette.setColor(QPalette::PlaceholderText, m_options.placeholderText);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, m_options.disabledText);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, m_options.button);
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, m_options.disabledText);
    return palette;
}

void Style::polish(QPalette& palette)
{
    palette = standardPalette();
}

void Style::polish(QWidget* widget)
{
    QProxyStyle::polish(widget);
    if (holdsValue(widget)) {
        if (widget->focusPolicy() == Qt::WheelFocus)
            widget->setFocusPolicy(Qt::StrongFocus);
        widget->installEventFilter(this);
    }
    auto* combo = qobject_cast<QComboBox*>(widget);
    if (combo && combo->itemDelegate()->inherits("QComboBoxDelegate")) // Qt's, not one of the program
        combo->setItemDelegate(new ComboBoxDelegate(combo));
}

void Style::unpolish(QWidget* widget)
{
    widget->removeEventFilter(this);
    QProxyStyle::unpolish(widget);
}

bool Style::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Wheel) {
        const auto* widget = qobject_cast<QWidget*>(watched);
        if (widget && !widget->hasFocus() && liesInScrollArea(*widget)) {
            event->ignore();
            return true;
        }
    }
    return QProxyStyle::eventFilter(watched, event);
}

int Style::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const
{
    switch (metric) {
    case PM_SmallIconSize:
    case PM_ButtonIconSize:
    case PM_ToolBarIconSize:
    case PM_TabBarIconSize:
    case PM_ListViewIconSize:
        return m_options.smallIconSize;
    case PM_SliderThickness:
    case PM_SliderControlThickness:
        return m_options.sliderThickness;
    case PM_HeaderDefaultSectionSizeVertical:
        return m_options.rowHeight;
    case PM_MessageBoxIconSize:
        return 2 * m_options.smallIconSize;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int Style::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                     QStyleHintReturn* returnData) const
{
    switch (hint) {
    case SH_Slider_AbsoluteSetButtons: // a click moves the handle there, and the drag goes on from it
        return Qt::LeftButton;
    case SH_EtchDisabledText:
    case SH_DialogButtonBox_ButtonsHaveIcons:
    case SH_ComboBox_Popup:
        return 0;
    case SH_ToolTip_WakeUpDelay:
        return 500;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
}

void Style::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                               const QWidget* widget) const
{
    const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control == CC_Dial && slider)
        drawDial(*slider, *painter);
    else if (control == CC_Slider && slider)
        drawSlider(*slider, *painter, widget);
    else
        QProxyStyle::drawComplexControl(control, option, painter, widget);
}

void Style::drawDial(const QStyleOptionSlider& option, QPainter& painter) const
{
    const bool enabled = option.state.testFlag(State_Enabled);
    const bool hovered = enabled && option.state.testFlag(State_MouseOver);
    const bool focused = enabled && option.state.testFlag(State_HasFocus);
    const double side = qMin(option.rect.width(), option.rect.height()) - 4.0;
    const QPointF centre = QRectF(option.rect).center();
    const double radius = qMax(4.0, side / 2);

    // QDial's own rule: a wrapping dial turns once round from the bottom, any other 300 degrees.
    const int range = qMax(1, option.maximum - option.minimum);
    const double portion = static_cast<double>(option.sliderPosition - option.minimum) / range;
    const double angle =
        option.dialWrapping ? M_PI * 1.5 - portion * 2 * M_PI : (M_PI * 8 - portion * 10 * M_PI) / 6;
    const QPointF direction(qCos(angle), -qSin(angle));

    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor ring = focused ? m_options.accent : m_options.border;
    painter.setPen(QPen(ring, focused ? 1.5 : 1.0));
    painter.setBrush(hovered ? m_options.button.lighter(115) : m_options.button);
    painter.drawEllipse(centre, radius, radius);
    painter.setPen(QPen(enabled ? m_options.accent : m_options.disabledText, 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(centre + direction * radius * 0.35, centre + direction * (radius - 3));
    painter.restore();
}

void Style::drawSlider(const QStyleOptionSlider& option, QPainter& painter, const QWidget* widget) const
{
    const bool horizontal = option.orientation == Qt::Horizontal;
    const bool enabled = option.state.testFlag(State_Enabled);
    const QRectF groove = proxy()->subControlRect(CC_Slider, &option, SC_SliderGroove, widget);
    const QPointF handle =
        QRectF(proxy()->subControlRect(CC_Slider, &option, SC_SliderHandle, widget)).center();

    constexpr double trackWidth = 4.0;
    QRectF track = horizontal
                       ? QRectF(groove.left(), handle.y() - trackWidth / 2, groove.width(), trackWidth)
                       : QRectF(handle.x() - trackWidth / 2, groove.top(), trackWidth, groove.height());
    QRectF filled = track;
    if (horizontal && option.upsideDown)
        filled.setLeft(handle.x());
    else if (horizontal)
        filled.setRight(handle.x());
    else if (option.upsideDown)
        filled.setTop(handle.y());
    else
        filled.setBottom(handle.y());

    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_options.border);
    painter.drawRoundedRect(track, trackWidth / 2, trackWidth / 2);
    painter.setBrush(enabled ? m_options.accent.darker(125) : m_options.button.lighter(115));
    painter.drawRoundedRect(filled, trackWidth / 2, trackWidth / 2);
    if (option.subControls.testFlag(SC_SliderTickmarks) && option.tickPosition != QSlider::NoTicks)
        drawTicks(option, painter, widget);
    drawSliderHandle(option, painter, handle);
    painter.restore();
}

void Style::drawSliderHandle(const QStyleOptionSlider& option, QPainter& painter, const QPointF& centre) const
{
    const bool enabled = option.state.testFlag(State_Enabled);
    const bool onHandle = option.activeSubControls.testFlag(SC_SliderHandle);
    const bool pressed = onHandle && option.state.testFlag(State_Sunken);
    const bool focused = enabled && option.state.testFlag(State_HasFocus);
    QColor fill = m_options.text.darker(110);
    if (!enabled)
        fill = m_options.disabledText.darker(130);
    else if (pressed)
        fill = m_options.link;
    else if (onHandle && option.state.testFlag(State_MouseOver))
        fill = m_options.brightText;
    painter.setPen(QPen(focused ? m_options.accent : m_options.border, focused ? 2.0 : 1.0));
    painter.setBrush(fill);
    painter.drawEllipse(centre, 6, 6);
}

void Style::drawTicks(const QStyleOptionSlider& option, QPainter& painter, const QWidget* widget) const
{
    constexpr int tickLength = 4;
    constexpr int minimumGap = 3; // closer ones would be a grey band
    const bool horizontal = option.orientation == Qt::Horizontal;
    const int handleLength = proxy()->pixelMetric(PM_SliderLength, &option, widget);
    const QRect room = option.rect;
    const int way = (horizontal ? room.width() : room.height()) - handleLength;
    const qint64 range = qint64(option.maximum) - option.minimum;
    qint64 interval = qMax(1, option.tickInterval > 0 ? option.tickInterval : option.pageStep);
    if (range <= 0 || way <= 0)
        return;
    while (interval * way < minimumGap * range)
        interval *= 10;
    painter.setPen(QPen(m_options.disabledText.darker(130), 1));
    painter.setRenderHint(QPainter::Antialiasing, false);
    for (qint64 value = option.minimum; value <= option.maximum; value += interval) {
        const int at =
            handleLength / 2 + sliderPositionFromValue(option.minimum, option.maximum,
                                                       static_cast<int>(value), way, option.upsideDown);
        for (const int side : {QSlider::TicksAbove, QSlider::TicksBelow}) {
            if (!(option.tickPosition & side))
                continue;
            const int length = side == QSlider::TicksAbove ? tickLength : -tickLength;
            if (horizontal) {
                const int edge = side == QSlider::TicksAbove ? room.top() : room.bottom();
                painter.drawLine(room.left() + at, edge, room.left() + at, edge + length);
            } else {
                const int edge = side == QSlider::TicksAbove ? room.left() : room.right();
                painter.drawLine(edge, room.top() + at, edge + length, room.top() + at);
            }
        }
    }
    painter.setRenderHint(QPainter::Antialiasing);
}

QPixmap Style::generatedIconPixmap(QIcon::Mode mode, const QPixmap& pixmap, const QStyleOption* option) const
{
    if (mode != QIcon::Disabled)
        return QProxyStyle::generatedIconPixmap(mode, pixmap, option);
    QPixmap faded(pixmap.size());
    faded.setDevicePixelRatio(pixmap.devicePixelRatio());
    faded.fill(Qt::transparent);
    QPainter painter(&faded);
    painter.setOpacity(m_options.disabledIconOpacity);
    painter.drawPixmap(0, 0, pixmap);
    return faded;
}

QIcon Style::standardIcon(StandardPixmap standard, const QStyleOption* option, const QWidget* widget) const
{
    const QString path = iconPath(standard);
    return path.isEmpty() ? QProxyStyle::standardIcon(standard, option, widget) : QIcon(path);
}

} // namespace Orn::Gui
