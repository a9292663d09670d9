#pragma once

#include "applications/player/tweaks/tweakfloat.h"

namespace Zph::Applications::Player {

// The engine's time in seconds, which the timeline drives.
class TweakTime : public TweakFloat
{
    Q_OBJECT

public:
    TweakTime(const TweakContext& context, QWidget* parent);

    bool isTimeDependent() const override { return true; }

signals:
    // The user typed a time.
    void timeChangedSignal(float time);

public slots:
    void setTimeChanged(float time) override;
    void valueChanged() override;

protected:
    void parseInputGui(const QDomElement& element) override;
};

} // namespace Zph::Applications::Player
