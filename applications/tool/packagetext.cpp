#include "applications/player/description/inputdetails.h"
#include "applications/player/description/outputformatname.h"
#include "applications/player/description/valuetype.h"
#include "applications/tool/identifiers.h"
#include "applications/tool/package.h"
#include "applications/tool/packageinfo.h"
#include "applications/tool/texttable.h"
#include "applications/tool/valuetext.h"

#include <algorithm>

namespace vellor::tool {

using namespace Zph::Applications::Player;

namespace {

QString counted(int count, const char* singular)
{
    return QStringLiteral("%1 %2%3").arg(count).arg(singular, count == 1 ? "" : "s");
}

/// One number where all components have the same.
QString boundsText(const QVector<double>& bounds)
{
    const bool isOne = std::count(bounds.begin(), bounds.end(), bounds.first()) == bounds.size();
    QStringList numbers;
    for (const double number : isOne ? bounds.mid(0, 1) : bounds)
        numbers.append(QString::number(number));
    return numbers.join(',');
}

QString rangeText(const InputDetails& details)
{
    QString text;
    if (!details.minimum.isEmpty() && !details.maximum.isEmpty())
        text = boundsText(details.minimum) + " to " + boundsText(details.maximum);
    else if (!details.minimum.isEmpty())
        text = "from " + boundsText(details.minimum);
    else if (!details.maximum.isEmpty())
        text = "to " + boundsText(details.maximum);
    if (!details.unit.isEmpty())
        text += (text.isEmpty() ? "" : " ") + details.unit;
    return text;
}

QString defaultText(const PackageInput& input, const InputDetails& details)
{
    if (details.widget == "outputsize")
        return QStringLiteral("%1 (%2x%3)")
            .arg(valueText(input.type, input.defaultValue))
            .arg(1u << (input.defaultValue.words[0] & 31))
            .arg(1u << (input.defaultValue.words[1] & 31));
    return input.type == ValueType::Text ? '"' + details.defaultText + '"'
                                         : valueText(input.type, input.defaultValue);
}

QString inputsText(const PackageModel& model, const QString& graph)
{
    TextTable table({"ID", "TYPE", "DEFAULT", "RANGE", "WIDGET", "LABEL"});
    QString group;
    for (const PackageInput& input : sortedInputs(model, graph)) {
        const InputDetails details = inputDetails(input);
        if (details.group != group)
            table.addLine('[' + details.group + ']');
        group = details.group;
        const QString id = idOf(input);
        table.addRow({id, typeName(input.type), defaultText(input, details), rangeText(details),
                      details.widget, details.label == id ? QString() : details.label});
        for (const InputDetails::Choice& choice : details.choices)
            table.addLine(QStringLiteral("    %1 = %2").arg(choice.value).arg(choice.label));
    }
    return "\n  Inputs\n" + table.text(4);
}

QString outputsText(const PackageModel& model, const QString& graph)
{
    TextTable table({"ID", "USAGE", "TYPE", "FORMAT", "SIZE", "LABEL"});
    for (const PackageOutput& output : model.outputsOfGraph(graph)) {
        const bool isImage = output.type == ValueType::Image;
        const QString size = !isImage ? QString()
                             : output.width == 0
                                 ? QStringLiteral("by inputs")
                                 : QStringLiteral("%1x%2").arg(output.width).arg(output.height);
        table.addRow({idOf(output), output.usages.join(','), output.boolean ? "bool" : typeName(output.type),
                      isImage ? outputFormatName(output.pixelFormat) : QString(), size, output.label});
    }
    return "\n  Outputs\n" + table.text(4);
}

QString presetsText(const Package& package, const QString& graph)
{
    TextTable table({"PRESET", "INPUTS", "DESCRIPTION"}, {1});
    bool any = false;
    for (const PresetDescription& preset : package.presets()) {
        if (preset.pkgurl != graph)
            continue;
        any = true;
        table.addRow({preset.label, QString::number(preset.inputs.size()), preset.description});
    }
    return any ? "\n  Presets\n" + table.text(4) : QString();
}

} // namespace

QString packageText(const Package& package)
{
    const PackageModel& model = package.model();
    QString text =
        QStringLiteral("%1: %2, %3, %4, %5\n")
            .arg(package.file(), counted(model.graphs().size(), "graph"),
                 counted(model.inputs().size(), "input"), counted(model.outputs().size(), "output"),
                 counted(package.presets().size(), "preset"));
    for (const PackageGraph& graph : model.graphs()) {
        text += "\n" + (graph.key.isEmpty() ? QStringLiteral("(no graph)") : graph.label + "  " + graph.key) +
                "\n";
        if (!graph.description.isEmpty())
            text += "  " + graph.description + "\n";
        text +=
            inputsText(model, graph.key) + outputsText(model, graph.key) + presetsText(package, graph.key);
    }
    return text;
}

} // namespace vellor::tool
