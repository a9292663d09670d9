#include "valuetext.h"

#include <QStringList>

#include <array>

namespace Zph::Applications::Player {

namespace {

using Orn::Module::Value;

template<class T>
void appendComponents(QStringList& lines, const T* components, std::size_t count, bool isBoolean)
{
    for (std::size_t i = 0; i < count; ++i) {
        const double number = isBoolean ? double(components[i] != T(0)) : double(components[i]);
        // Integers of up to ten digits are shown whole.
        lines << (std::is_integral_v<T> ? QString::number(qint64(number)) : QString::number(number, 'g', 6));
    }
}

template<class T> bool appendIfScalar(QStringList& lines, const Value::Data& value, bool isBoolean)
{
    const auto* data = dynamic_cast<const Value::DataT<T>*>(&value);
    if (data)
        appendComponents(lines, &data->value, 1, isBoolean);
    return data;
}

template<class Array> bool appendIfArray(QStringList& lines, const Value::Data& value, bool isBoolean)
{
    const auto* data = dynamic_cast<const Value::DataT<Array>*>(&value);
    if (data)
        appendComponents(lines, data->value.data(), data->value.size(), isBoolean);
    return data;
}

} // namespace

QString valueText(const Value::Data& value, bool isBoolean)
{
    QStringList lines;
    appendIfScalar<float>(lines, value, isBoolean) || appendIfScalar<int>(lines, value, isBoolean) ||
        appendIfArray<std::array<float, 2>>(lines, value, isBoolean) ||
        appendIfArray<std::array<float, 3>>(lines, value, isBoolean) ||
        appendIfArray<std::array<float, 4>>(lines, value, isBoolean) ||
        appendIfArray<std::array<int, 2>>(lines, value, isBoolean) ||
        appendIfArray<std::array<int, 3>>(lines, value, isBoolean) ||
        appendIfArray<std::array<int, 4>>(lines, value, isBoolean);
    return lines.join('\n');
}

} // namespace Zph::Applications::Player
