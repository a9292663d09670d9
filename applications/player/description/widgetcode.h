#pragma once

#include <QDomElement>
#include <QString>

namespace Zph::Applications::Player {

// Which widget an input asks for.
enum class WidgetCode
{
    None = 0,
    Slider = 1,
    Angle = 2,
    Toggle = 3,
    Color = 4,
    ComboBox = 5,
    Time = 6,
    RandomSeed = 7,
    NormalFormat = 8,
    OutputSize = 9
};

// The code of one of the engine's own inputs ("$time", "$randomseed"...), or None.
WidgetCode reservedWidgetCode(const QString& identifier);

// The code of a `widget` attribute, or None for a word that isn't one.
WidgetCode namedWidgetCode(const QString& widget);

// The code of an `input` element: that of its identifier, or else of its `inputgui`. A null element has None.
WidgetCode widgetCodeOfInput(const QDomElement& input);

} // namespace Zph::Applications::Player
