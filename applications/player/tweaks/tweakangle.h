#pragma once

#include "applications/player/tweaks/tweakbase.h"

class QDial;
class QDoubleSpinBox;

namespace Zph::Applications::Player {

// An angle on a dial, in turns, degrees or radians. A float turns smoothly; an integer counts degrees. The
// dial shows where in its turn the value is and keeps the whole turns.
class TweakAngle : public TweakBase
{
    Q_OBJECT

public:
    TweakAngle(quint32 type, const TweakContext& context, QWidget* parent);

    WidgetCode widgetKind() const override { return WidgetCode::Angle; }

public slots:
    void toggleSlidersTracking(bool tracking) override;

protected:
    void parseInputGui(const QDomElement& element) override;
    void updateInputFromWidget() override;
    void updateWidgetFromInput() override;

private:
    void readUnit(const QString& unit);
    void updateDial();
    void dialMoved(int position);
    bool isFloat() const { return isFloatType(type()); }

    QDoubleSpinBox* m_spinBox;
    QLabel* m_unitLabel;
    QDial* m_dial;
    float m_turn = 1; // a full turn in the unit
};

} // namespace Zph::Applications::Player
