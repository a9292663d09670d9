#include "applications/tool/valuetext.h"

#include "applications/player/description/valuetype.h"

#include <QJsonArray>
#include <QLocale>
#include <QStringList>

namespace vellor::tool {

using namespace Zph::Applications::Player;

QString typeName(quint32 type)
{
    if (type == ValueType::Image)
        return QStringLiteral("image");
    if (type == ValueType::Text)
        return QStringLiteral("text");
    return valueTypeName(type).toLower();
}

QString numberText(float number)
{
    // The text of the float; that of the double beside it would show the float's rounding.
    for (int digits = 6; digits < 9; ++digits) {
        const QString text = QString::number(double(number), 'g', digits);
        if (text.toFloat() == number)
            return text;
    }
    return QString::number(double(number), 'g', 9);
}

QString valueText(quint32 type, const InputValue& value)
{
    QStringList parts;
    for (int i = 0; i < componentCount(type); ++i)
        parts.append(isFloatType(type) ? numberText(value.floatAt(i)) : QString::number(value.intAt(i)));
    return parts.join(',');
}

QJsonValue valueJson(quint32 type, const InputValue& value)
{
    QJsonArray numbers;
    for (int i = 0; i < componentCount(type); ++i)
        numbers.append(isFloatType(type) ? numberText(value.floatAt(i)).toDouble() : double(value.intAt(i)));
    return numbers.size() > 1 ? QJsonValue(numbers) : numbers.isEmpty() ? QJsonValue() : numbers.first();
}

} // namespace vellor::tool
