#include "applications/player/description/inputdetails.h"

#include "applications/player/description/inputorder.h"
#include "applications/player/description/valuetype.h"
#include "applications/player/description/widgetcode.h"

#include <algorithm>

namespace Zph::Applications::Player {

namespace {

// A number for each component: a single one counts for all of them. None where one can't be read.
QVector<double> readBounds(const QDomElement& bounds, const char* attribute, quint32 type)
{
    const QString text = bounds.attribute(QLatin1String(attribute));
    if (text.isEmpty())
        return {};
    const QStringList parts = text.split(',');
    QVector<double> numbers;
    for (int i = 0; i < componentCount(type); ++i) {
        bool valid = false;
        numbers.append(parts.value(parts.size() == 1 ? 0 : i).toDouble(&valid));
        if (!valid)
            return {};
    }
    return numbers;
}

void readRange(InputDetails& details, const QDomElement& bounds, quint32 type)
{
    details.minimum = readBounds(bounds, "min", type);
    details.maximum = readBounds(bounds, "max", type);
    details.clamp = bounds.attribute(QStringLiteral("clamp")) == QLatin1String("on");
    details.unit = bounds.attribute(QStringLiteral("unit"));
}

QVector<InputDetails::Choice> readChoices(const QDomElement& box)
{
    QVector<InputDetails::Choice> choices;
    for (const QDomElement& item : childElements(box, QStringLiteral("guicomboboxitem")))
        choices.append(
            {item.attribute(QStringLiteral("value")).toInt(), item.attribute(QStringLiteral("text"))});
    return choices;
}

QVector<InputDetails::Choice> readStates(const QDomElement& button)
{
    return {{0, button.attribute(QStringLiteral("label0"), QStringLiteral("off"))},
            {1, button.attribute(QStringLiteral("label1"), QStringLiteral("on"))}};
}

QString widgetName(const QString& identifier, const QDomElement& gui)
{
    switch (reservedWidgetCode(identifier)) {
    case WidgetCode::Time:
        return QStringLiteral("time");
    case WidgetCode::RandomSeed:
        return QStringLiteral("seed");
    case WidgetCode::NormalFormat:
        return QStringLiteral("normalformat");
    case WidgetCode::OutputSize:
        return QStringLiteral("outputsize");
    default:
        return gui.attribute(QStringLiteral("widget"));
    }
}

} // namespace

InputDetails inputDetails(const PackageInput& input)
{
    InputDetails details;
    const QDomElement gui = input.element.firstChildElement(QStringLiteral("inputgui"));
    details.identifier = input.element.attribute(QStringLiteral("identifier"));
    details.label = gui.attribute(QStringLiteral("label"), details.identifier);
    details.description = gui.attribute(QStringLiteral("description"));
    details.group = gui.attribute(QStringLiteral("group"));
    details.visibleIf = gui.attribute(QStringLiteral("visibleif"));
    details.widget = widgetName(details.identifier, gui);
    details.toggle = input.type == ValueType::Int && widgetCodeOfInput(input.element) == WidgetCode::Toggle;
    if (input.type == ValueType::Text)
        details.defaultText = input.element.attribute(QStringLiteral("default"));
    for (const char* tag : {"guislider", "guiangle"}) {
        const QDomElement bounds = gui.firstChildElement(QLatin1String(tag));
        if (!bounds.isNull())
            readRange(details, bounds, input.type);
    }
    if (details.toggle)
        details.choices = readStates(gui.firstChildElement(QStringLiteral("guibutton")));
    else if (input.type == ValueType::Int)
        details.choices = readChoices(gui.firstChildElement(QStringLiteral("guicombobox")));
    return details;
}

InputValue panelDefault(const PackageInput& input)
{
    const bool isOutputSize =
        input.type == ValueType::Int2 && widgetCodeOfInput(input.element) == WidgetCode::OutputSize;
    return isOutputSize ? InputValue::fromInts(9, 9) : input.defaultValue;
}

QVector<PackageInput> sortedInputs(const PackageModel& package, const QString& graphKey)
{
    QVector<QPair<QString, PackageInput>> keyed;
    for (const PackageInput& input : package.inputs()) {
        if (input.graphKey == graphKey || input.graphKey == DescriptionIndex::globalKey() ||
            input.element.isNull())
            keyed.append(
                {inputSortKey(package.description(), {input.element, input.graphKey}, input.uid), input});
    }
    std::stable_sort(keyed.begin(), keyed.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    QVector<PackageInput> inputs;
    for (const auto& entry : qAsConst(keyed))
        inputs.append(entry.second);
    return inputs;
}

} // namespace Zph::Applications::Player
