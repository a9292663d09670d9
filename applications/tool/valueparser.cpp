#include "applications/tool/valueparser.h"

#include "applications/player/description/valuetype.h"
#include "applications/tool/options.h"
#include "applications/tool/valuetext.h"

#include <QStringList>

#include <cmath>

namespace vellor::tool {

using namespace Zph::Applications::Player;

namespace {

constexpr int kLargestSize = 16384; // pixels

[[noreturn]] void expected(const QString& what, const QString& text)
{
    throw UsageError(QStringLiteral("expected %1, not '%2'").arg(what, text).toStdString());
}

QString choiceList(const InputDetails& details)
{
    QStringList texts;
    for (const InputDetails::Choice& choice : details.choices)
        texts.append(QStringLiteral("%1 (%2)").arg(choice.value).arg(choice.label));
    return texts.join(", ");
}

bool isSame(const QString& a, const QString& b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

InputValue parseChoice(const InputDetails& details, const QString& text)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    for (const InputDetails::Choice& choice : details.choices) {
        if ((isNumber && choice.value == number) || isSame(choice.label, text))
            return InputValue::fromInts(choice.value);
    }
    if (details.toggle && (isSame(text, "on") || isSame(text, "true") || isSame(text, "yes")))
        return InputValue::fromInts(1);
    if (details.toggle && (isSame(text, "off") || isSame(text, "false") || isSame(text, "no")))
        return InputValue::fromInts(0);
    expected(choiceList(details), text);
}

/// "#rrggbb" or "#rrggbbaa" as shares of 1; alpha is 1 where it is left out.
InputValue parseHexColour(quint32 type, const QString& text)
{
    const int digits = text.size() - 1;
    bool valid = false;
    const quint32 code = text.mid(1).toUInt(&valid, 16);
    if (!valid || (digits != 6 && !(digits == 8 && type == ValueType::Float4)))
        expected(type == ValueType::Float4 ? "#rrggbb or #rrggbbaa" : "#rrggbb", text);
    const quint32 bytes = digits == 6 ? (code << 8) | 0xff : code;
    InputValue value;
    for (int i = 0; i < componentCount(type); ++i)
        value.setFloat(i, float((bytes >> (24 - 8 * i)) & 0xff) / 255.0f);
    return value;
}

QString kindOfNumbers(quint32 type)
{
    const int count = componentCount(type);
    const char* kind = isFloatType(type) ? "number" : "whole number";
    return count == 1 ? QStringLiteral("a %1").arg(kind)
                      : QStringLiteral("%1 %2s with ',' between them").arg(count).arg(kind);
}

InputValue parseNumbers(quint32 type, const QString& text)
{
    const QStringList parts = text.split(',');
    if (parts.size() != componentCount(type))
        expected(kindOfNumbers(type), text);
    InputValue value;
    for (int i = 0; i < parts.size(); ++i) {
        bool valid = false;
        if (isFloatType(type)) {
            const float number = parts[i].trimmed().toFloat(&valid);
            valid = valid && std::isfinite(number);
            value.setFloat(i, number);
        } else {
            value.setInt(i, parts[i].trimmed().toInt(&valid));
        }
        if (!valid)
            expected(kindOfNumbers(type), text);
    }
    return value;
}

/// A bound of a float input is a float too.
double asTold(quint32 type, double bound)
{
    return isFloatType(type) ? double(float(bound)) : bound;
}

void checkRange(quint32 type, const InputDetails& details, const InputValue& value, const QString& text)
{
    for (int i = 0; details.clamp && i < componentCount(type); ++i) {
        const double number = isFloatType(type) ? double(value.floatAt(i)) : double(value.intAt(i));
        if (!details.minimum.isEmpty() && number < asTold(type, details.minimum[i]))
            expected(QStringLiteral("at least %1").arg(details.minimum[i]), text);
        if (!details.maximum.isEmpty() && number > asTold(type, details.maximum[i]))
            expected(QStringLiteral("at most %1").arg(details.maximum[i]), text);
    }
}

} // namespace

InputValue parseValue(quint32 type, const InputDetails& details, const QString& text)
{
    if (!details.choices.isEmpty())
        return parseChoice(details, text);
    if (text.startsWith('#') && (type == ValueType::Float3 || type == ValueType::Float4))
        return parseHexColour(type, text);
    const InputValue value = parseNumbers(type, text);
    checkRange(type, details, value, text);
    return value;
}

InputValue parseSize(const QString& text)
{
    QStringList sides = text.split('x');
    if (sides.size() == 1)
        sides.append(sides.first());
    InputValue logarithms;
    for (int i = 0; i < sides.size(); ++i) {
        bool valid = false;
        const int side = sides[i].toInt(&valid);
        if (!valid || sides.size() > 2 || side < 1 || side > kLargestSize || (side & (side - 1)) != 0)
            expected(
                QStringLiteral("a size like 1024 or 1024x512 in powers of two up to %1").arg(kLargestSize),
                text);
        int logarithm = 0;
        while ((1 << logarithm) < side)
            ++logarithm;
        logarithms.setInt(i, logarithm);
    }
    return logarithms;
}

} // namespace vellor::tool
