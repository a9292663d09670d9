#pragma once

#include "applications/player/tweaks/tweakbase.h"

#include <vector>

class QDoubleSpinBox;
class QSlider;

namespace Zph::Applications::Player {

// Up to four numbers, each on a line of its own with a slider between its bounds.
class TweakSlider : public TweakBase
{
    Q_OBJECT

public:
    TweakSlider(quint32 type, const TweakContext& context, QWidget* parent);

    WidgetCode widgetKind() const override { return WidgetCode::Slider; }

public slots:
    void toggleSlidersTracking(bool tracking) override;
    // The box of component `i` was changed by the user, or its slider moved.
    virtual void valueChanged(int i);
    void sliderMoved(int i, int step);

protected:
    void parseInputGui(const QDomElement& element) override;
    void updateInputFromWidget() override;
    void updateWidgetFromInput() override;

private:
    struct Line
    {
        QLabel* label;
        QLabel* minLabel;
        QSlider* slider;
        QLabel* maxLabel;
        QDoubleSpinBox* spinBox;
        float minimum = 0; // of a float component
        float maximum = 1;
    };

    Line makeLine(QHBoxLayout* row);
    void readFloatBounds(Line& line, int i, const QDomElement& bounds);
    void readIntBounds(Line& line, int i, const QDomElement& bounds);
    void updateSlider(const Line& line);
    bool isFloat() const { return isFloatType(type()); }

    std::vector<Line> m_lines;
};

} // namespace Zph::Applications::Player
