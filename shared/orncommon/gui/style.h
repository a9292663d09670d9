#pragma once

#include "orncommon/gui/styleoptions.h"

#include <QProxyStyle>

class QStyleOptionSlider;

namespace Orn::Gui {

/// The style below the theme's sheet: the palette, and what a sheet cannot say, such as dials, sliders with
/// ticks, disabled icons and how sliders and scroll areas answer the mouse.
class Style : public QProxyStyle
{
    Q_OBJECT

public:
    explicit Style(const StyleOptions& options = {});

    const StyleOptions& options() const { return m_options; }

    QPalette standardPalette() const override;
    void polish(QPalette& palette) override;
    void polish(QWidget* widget) override;
    void unpolish(QWidget* widget) override;
    using QProxyStyle::polish;
    using QProxyStyle::unpolish;

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    QPixmap generatedIconPixmap(QIcon::Mode mode, const QPixmap& pixmap,
                                const QStyleOption* option) const override;
    QIcon standardIcon(StandardPixmap standardIcon, const QStyleOption* option,
                       const QWidget* widget) const override;

protected:
    /// A wheel that turns over a value inside a scroll area scrolls the area, unless the value has the focus.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void drawDial(const QStyleOptionSlider& option, QPainter& painter) const;
    void drawSlider(const QStyleOptionSlider& option, QPainter& painter, const QWidget* widget) const;
    void drawSliderHandle(const QStyleOptionSlider& option, QPainter& painter, const QPointF& centre) const;
    void drawTicks(const QStyleOptionSlider& option, QPainter& painter, const QWidget* widget) const;

    StyleOptions m_options;
};

} // namespace Orn::Gui
