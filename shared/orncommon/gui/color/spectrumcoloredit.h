#pragma once

#include "orncommon/gui/color/coloredit.h"
#include "orncommon/gui/color/colorhsv.h"

#include <QImage>

namespace Orn::Gui {

/// A field of hue (left to right) and saturation (bottom to top), at the value of the current colour.
class SpectrumColorEdit : public ColorEdit
{
    Q_OBJECT

public:
    explicit SpectrumColorEdit(QWidget* parent = nullptr);

    QSize sizeHint() const override { return {240, 160}; }
    QSize minimumSizeHint() const override { return {120, 80}; }

protected:
    void updateFromColor() override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void pick(const QPoint& position);
    void changeHueAndSaturation(float hue, float saturation);
    const QImage& field();

    ColorHSVf m_hsv;
    QImage m_field;
    float m_fieldValue = -1.0F; ///< the value that m_field was made for
};

} // namespace Orn::Gui
