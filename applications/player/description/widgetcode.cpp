#include "applications/player/description/widgetcode.h"

namespace Zph::Applications::Player {

namespace {

struct Name
{
    const char* text;
    WidgetCode code;
};

constexpr Name reservedNames[] = {
    {"$time", WidgetCode::Time},
    {"$randomseed", WidgetCode::RandomSeed},
    {"$normalformat", WidgetCode::NormalFormat},
    {"$outputsize", WidgetCode::OutputSize},
};

constexpr Name widgetNames[] = {
    {"slider", WidgetCode::Slider},   {"angle", WidgetCode::Angle}, {"togglebutton", WidgetCode::Toggle},
    {"checkbox", WidgetCode::Toggle}, {"color", WidgetCode::Color}, {"combobox", WidgetCode::ComboBox},
};

template<size_t Count> WidgetCode find(const Name (&names)[Count], const QString& text)
{
    for (const Name& name : names)
        if (text == QLatin1String(name.text))
            return name.code;
    return WidgetCode::None;
}

} // namespace

WidgetCode reservedWidgetCode(const QString& identifier)
{
    return find(reservedNames, identifier);
}

WidgetCode namedWidgetCode(const QString& widget)
{
    return find(widgetNames, widget);
}

WidgetCode widgetCodeOfInput(const QDomElement& input)
{
    const WidgetCode reserved = reservedWidgetCode(input.attribute(QStringLiteral("identifier")));
    if (reserved != WidgetCode::None)
        return reserved;
    const QDomElement gui = input.firstChildElement(QStringLiteral("inputgui"));
    return namedWidgetCode(gui.attribute(QStringLiteral("widget")));
}

} // namespace Zph::Applications::Player
