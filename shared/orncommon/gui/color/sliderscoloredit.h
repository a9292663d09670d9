#pragma once

#include "orncommon/gui/color/colorslider.h"

#include <array>

class QDoubleSpinBox;
class QLabel;

namespace Orn::Gui {

/// Red, green, blue and alpha, each as a slider and a number from 0 to 1.
class SlidersColorEdit : public ColorEdit
{
    Q_OBJECT

public:
    explicit SlidersColorEdit(QWidget* parent = nullptr);

    void setAlphaVisible(bool visible);

protected:
    void updateFromColor() override;

private:
    struct Row
    {
        ColorSlider::Channel channel = ColorSlider::Channel::Red;
        QLabel* label = nullptr;
        ColorSlider* slider = nullptr;
        QDoubleSpinBox* number = nullptr;
    };

    Row createRow(ColorSlider::Channel channel, const QString& name);

    std::array<Row, 4> m_rows;
};

} // namespace Orn::Gui
