#pragma once

#include "applications/player/tweaks/tweakbase.h"

class QSlider;
class QSpinBox;

namespace Zph::Applications::Player {

// An integer: a slider of its values, and a box for numbers typed.
class TweakInt : public TweakBase
{
    Q_OBJECT

public:
    TweakInt(const TweakContext& context, QWidget* parent);

public slots:
    void toggleSlidersTracking(bool tracking) override;

protected:
    void parseInputGui(const QDomElement& element) override;
    void updateInputFromWidget() override;
    void updateWidgetFromInput() override;

private:
    void updateSlider();

    QSlider* m_slider;
    QSpinBox* m_spinBox;
    QLabel* m_minLabel;
    QLabel* m_maxLabel;
};

} // namespace Zph::Applications::Player
