#pragma once

#include "orncommon/gui/color/coloredit.h"
#include "orncommon/gui/color/colorhsv.h"

namespace Orn::Gui {

/// One channel of a colour as a bar that shows, along its way, what the colour would become.
class ColorSlider : public ColorEdit
{
    Q_OBJECT

public:
    enum class Channel
    {
        Red,
        Green,
        Blue,
        Alpha,
        Value, ///< of hue, saturation and value
    };

    ColorSlider(Channel channel, Qt::Orientation orientation, QWidget* parent = nullptr);

    /// 0 at the left or bottom end, 1 at the other.
    float value() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void updateFromColor() override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    Core::ColorRGBAf colorAt(float value) const;
    float valueAt(const QPoint& position) const;
    QRectF track() const;

    Channel m_channel;
    Qt::Orientation m_orientation;
    ColorHSVf m_hsv;
};

/// The channel of a colour that is one of red, green, blue and alpha.
float& channelOf(Core::ColorRGBAf& color, ColorSlider::Channel channel);

} // namespace Orn::Gui
