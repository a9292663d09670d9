#pragma once

#include "applications/player/tweaks/tweakbase.h"

class QDoubleSpinBox;
class QSlider;

namespace Zph::Applications::Player {

// A float: a slider between the bounds of the description, and a box for numbers typed.
class TweakFloat : public TweakBase
{
    Q_OBJECT

public:
    TweakFloat(const TweakContext& context, QWidget* parent);

public slots:
    void toggleSlidersTracking(bool tracking) override;
    // The box or the slider was moved by the user.
    virtual void valueChanged();
    void sliderMoved(int step);

protected:
    void parseInputGui(const QDomElement& element) override;
    void updateInputFromWidget() override;
    void updateWidgetFromInput() override;
    void updateSlider();

    QDoubleSpinBox* spinBox() const { return m_spinBox; }
    QSlider* slider() const { return m_slider; }
    QLabel* minLabel() const { return m_minLabel; }
    QLabel* maxLabel() const { return m_maxLabel; }

private:
    void readBounds(const QDomElement& bounds);

    QDoubleSpinBox* m_spinBox;
    QSlider* m_slider;
    QLabel* m_minLabel;
    QLabel* m_maxLabel;
    float m_sliderMin = 0;
    float m_sliderMax = 1;
};

} // namespace Zph::Applications::Player
