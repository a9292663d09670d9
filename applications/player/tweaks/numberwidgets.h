#pragma once

#include <QString>

class QDomElement;
class QDoubleSpinBox;
class QHBoxLayout;
class QLabel;
class QSlider;
class QSpinBox;
class QWidget;

namespace Zph::Applications::Player {

// What the kinds that edit numbers share: their widgets and the way between a slider's steps and a value.

constexpr float largestFloat = 3.4028234663852886e+38f;
constexpr double largestDouble = 1.7976931348623157e308;
constexpr int sliderSteps = 1024; // of a float slider, from end to end

// The integer part of a number, at the ends of the range where it lies beyond; 0 for not-a-number.
int truncated(double number);

// The value at a slider step, and the step nearest to a value (not limited to the slider's range).
float sliderToValue(int step, float minimum, float maximum);
int valueToSlider(double value, float minimum, float maximum);

// A bound of the description; `fallback` where it isn't a finite number.
float parsedFloat(const QString& text, float fallback);
int parsedInt(const QString& text, int fallback);

// The child of `inputgui` with this tag, under an `input` element; null where it is missing.
QDomElement inputGuiChild(const QDomElement& input, const char* tag);

// "on" clamps typed values to the bounds.
bool isClamped(const QDomElement& bounds);

// A horizontal slider of `sliderSteps` steps.
QSlider* makeSlider(QWidget* parent);

// Boxes that report a typed number when it is complete, and a step at once. The kind sets the range.
QDoubleSpinBox* makeDoubleSpinBox(QWidget* parent, int decimals);
QSpinBox* makeSpinBox(QWidget* parent);

// Leaves out the buttons of a box that stands among others, in favour of its digits; the arrow keys step it.
void makeNarrow(QDoubleSpinBox* box);

// The float that a box stands for: `current`, where the box shows just that, rounded as it may be; else the
// number in the box. So editing one component doesn't round the others.
float floatInBox(const QDoubleSpinBox& box, float current);

// " 0.5" and "1": the texts at the ends of a slider.
QString minimumText(float value);
QString maximumText(float value);

} // namespace Zph::Applications::Player
