#pragma once

#include "applications/player/description/widgetcode.h"

class QWidget;

namespace Zph::Applications::Player {

class TweakBase;
struct TweakContext;

enum class TweakKind
{
    None,
    Float,
    Time,
    Int,
    Vec,
    Color,
    Slider,
    Angle,
    Toggle,
    ComboBox,
    Normal,
    OutputSize,
    Random,
    Text,
    Image
};

// The kind of row for an input: the widget asked for, where it can edit the type; else the usual one of the
// type. None for a type that can't be edited.
TweakKind tweakKindFor(quint32 type, WidgetCode code);

// Makes the row, or null for TweakKind::None. `parent` owns it.
TweakBase* makeTweak(quint32 type, WidgetCode code, const TweakContext& context, QWidget* parent);

} // namespace Zph::Applications::Player
