#include "applications/player/tweaks/tweaktime.h"

#include <QDoubleSpinBox>
#include <QLabel>
#include <QSlider>

namespace Zph::Applications::Player {

TweakTime::TweakTime(const TweakContext& context, QWidget* parent) : TweakFloat(context, parent)
{
    minLabel()->hide();
    slider()->hide();
}

void TweakTime::parseInputGui(const QDomElement& element)
{
    TweakFloat::parseInputGui(element);
    setRichCaption(tr("<b>Time</b>"), tr("Time"));
    maxLabel()->setText(tr("Driven by the timeline "));
}

void TweakTime::setTimeChanged(float time)
{
    applyValue(InputValue::fromFloats(time)); // all of it: the box shows fewer digits
}

void TweakTime::valueChanged()
{
    // The base connects this slot, so it also hears what setTimeChanged() writes.
    const float time = float(spinBox()->value());
    const bool edited = time != value().floatAt(0);
    TweakFloat::valueChanged();
    if (edited && time == value().floatAt(0))
        emit timeChangedSignal(time);
}

} // namespace Zph::Applications::Player
