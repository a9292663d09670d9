#include "applications/player/tweaks/tweakkind.h"

#include "applications/player/description/valuetype.h"
#include "applications/player/tweaks/tweakangle.h"
#include "applications/player/tweaks/tweakcolor.h"
#include "applications/player/tweaks/tweakcombobox.h"
#include "applications/player/tweaks/tweakimage.h"
#include "applications/player/tweaks/tweakint.h"
#include "applications/player/tweaks/tweaknormal.h"
#include "applications/player/tweaks/tweakoutputsize.h"
#include "applications/player/tweaks/tweakrandom.h"
#include "applications/player/tweaks/tweakslider.h"
#include "applications/player/tweaks/tweaktext.h"
#include "applications/player/tweaks/tweaktime.h"
#include "applications/player/tweaks/tweaktoggle.h"

namespace Zph::Applications::Player {

namespace {

// A bit for each type code.
constexpr quint32 bit(quint32 type)
{
    return 1u << type;
}

constexpr quint32 anyType = ~0u;
constexpr quint32 multiTypes = bit(ValueType::Float2) | bit(ValueType::Float3) | bit(ValueType::Float4) |
                               bit(ValueType::Int2) | bit(ValueType::Int3) | bit(ValueType::Int4);
constexpr quint32 singleTypes = bit(ValueType::Float) | bit(ValueType::Int);
constexpr quint32 colorTypes =
    bit(ValueType::Float3) | bit(ValueType::Float4) | bit(ValueType::Int3) | bit(ValueType::Int4);

struct WidgetRule
{
    WidgetCode code;
    quint32 types;
    TweakKind kind;
};

constexpr WidgetRule widgetRules[] = {
    {WidgetCode::Slider, singleTypes | multiTypes, TweakKind::Slider},
    {WidgetCode::Angle, singleTypes, TweakKind::Angle},
    {WidgetCode::Toggle, singleTypes, TweakKind::Toggle},
    {WidgetCode::Color, colorTypes, TweakKind::Color},
    {WidgetCode::ComboBox, bit(ValueType::Int), TweakKind::ComboBox},
    {WidgetCode::Time, anyType, TweakKind::Time},
    {WidgetCode::RandomSeed, bit(ValueType::Int), TweakKind::Random},
    {WidgetCode::NormalFormat, bit(ValueType::Int), TweakKind::Normal},
    {WidgetCode::OutputSize, bit(ValueType::Int2), TweakKind::OutputSize},
};

bool contains(quint32 types, quint32 type)
{
    return types == anyType || (type < 32 && (types & bit(type)) != 0);
}

TweakKind kindOfType(quint32 type)
{
    switch (type) {
    case ValueType::Float:
        return TweakKind::Float;
    case ValueType::Int:
        return TweakKind::Int;
    case ValueType::Image:
        return TweakKind::Image;
    case ValueType::Text:
        return TweakKind::Text;
    default:
        return contains(multiTypes, type) ? TweakKind::Vec : TweakKind::None;
    }
}

} // namespace

TweakKind tweakKindFor(quint32 type, WidgetCode code)
{
    for (const WidgetRule& rule : widgetRules)
        if (rule.code == code && contains(rule.types, type))
            return rule.kind;
    return kindOfType(type);
}

TweakBase* makeTweak(quint32 type, WidgetCode code, const TweakContext& context, QWidget* parent)
{
    switch (tweakKindFor(type, code)) {
    case TweakKind::None:
        return nullptr;
    case TweakKind::Float:
        return new TweakFloat(context, parent);
    case TweakKind::Time:
        return new TweakTime(context, parent);
    case TweakKind::Int:
        return new TweakInt(context, parent);
    case TweakKind::Vec:
        return new TweakVec(type, context, parent);
    case TweakKind::Color:
        return new TweakColor(type, context, parent);
    case TweakKind::Slider:
        return new TweakSlider(type, context, parent);
    case TweakKind::Angle:
        return new TweakAngle(type, context, parent);
    case TweakKind::Toggle:
        return new TweakToggle(type, context, parent);
    case TweakKind::ComboBox:
        return new TweakComboBox(context, parent);
    case TweakKind::Normal:
        return new TweakNormal(context, parent);
    case TweakKind::OutputSize:
        return new TweakOutputSize(context, parent);
    case TweakKind::Random:
        return new TweakRandom(context, parent);
    case TweakKind::Text:
        return new TweakText(context, parent);
    case TweakKind::Image:
        return new TweakImage(context, parent);
    }
    return nullptr;
}

} // namespace Zph::Applications::Player
