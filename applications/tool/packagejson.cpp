#include "applications/player/description/inputdetails.h"
#include "applications/player/description/outputformatname.h"
#include "applications/player/description/valuetype.h"
#include "applications/tool/package.h"
#include "applications/tool/packageinfo.h"
#include "applications/tool/valuetext.h"

#include <QJsonArray>

namespace vellor::tool {

using namespace Zph::Applications::Player;

namespace {

/// Keys are there where there is something to say.
void put(QJsonObject& object, const char* key, const QString& text)
{
    if (!text.isEmpty())
        object.insert(QLatin1String(key), text);
}

void put(QJsonObject& object, const char* key, const QVector<double>& numbers)
{
    QJsonArray array;
    for (const double number : numbers)
        array.append(number);
    if (!array.isEmpty())
        object.insert(QLatin1String(key), array.size() == 1 ? array.first() : QJsonValue(array));
}

QJsonObject inputJson(const PackageInput& input)
{
    const InputDetails details = inputDetails(input);
    QJsonObject json{{"uid", double(input.uid)}, {"type", typeName(input.type)}};
    put(json, "identifier", details.identifier);
    put(json, "label", details.label);
    put(json, "description", details.description);
    put(json, "group", details.group);
    put(json, "widget", details.widget);
    put(json, "unit", details.unit);
    put(json, "visibleif", details.visibleIf);
    put(json, "minimum", details.minimum);
    put(json, "maximum", details.maximum);
    if (!details.minimum.isEmpty() || !details.maximum.isEmpty())
        json.insert("clamp", details.clamp);
    if (input.type == ValueType::Text)
        json.insert("default", details.defaultText);
    else if (componentCount(input.type) > 0)
        json.insert("default", valueJson(input.type, input.defaultValue));
    QJsonArray choices;
    for (const InputDetails::Choice& choice : details.choices)
        choices.append(QJsonObject{{"value", choice.value}, {"label", choice.label}});
    if (!choices.isEmpty())
        json.insert("choices", choices);
    return json;
}

QJsonObject outputJson(const PackageOutput& output)
{
    QJsonObject json{{"uid", double(output.uid)}, {"type", output.boolean ? "bool" : typeName(output.type)}};
    put(json, "identifier", output.identifier);
    put(json, "label", output.label);
    put(json, "description", output.description);
    put(json, "visibleif", output.visibleIf);
    json.insert("usages", QJsonArray::fromStringList(output.usages));
    if (output.type == ValueType::Image)
        json.insert("format", outputFormatName(output.pixelFormat));
    if (output.width > 0)
        json.insert("size", QJsonArray{double(output.width), double(output.height)});
    return json;
}

QJsonObject presetJson(const PresetDescription& preset)
{
    QJsonObject values;
    for (const PresetInput& entry : preset.inputs)
        values.insert(entry.identifier, componentCount(entry.type) > 0 ? valueJson(entry.type, entry.value)
                                                                       : QJsonValue(entry.text));
    QJsonObject json{{"label", preset.label}, {"values", values}};
    put(json, "description", preset.description);
    return json;
}

QJsonObject graphJson(const Package& package, const PackageGraph& graph)
{
    QJsonArray inputs, outputs, presets;
    for (const PackageInput& input : sortedInputs(package.model(), graph.key))
        inputs.append(inputJson(input));
    for (const PackageOutput& output : package.model().outputsOfGraph(graph.key))
        outputs.append(outputJson(output));
    for (const PresetDescription& preset : package.presets())
        if (preset.pkgurl == graph.key)
            presets.append(presetJson(preset));
    QJsonObject json{{"url", graph.key}, {"inputs", inputs}, {"outputs", outputs}, {"presets", presets}};
    put(json, "label", graph.label);
    put(json, "description", graph.description);
    return json;
}

} // namespace

QJsonObject packageJson(const Package& package)
{
    QJsonArray graphs;
    for (const PackageGraph& graph : package.model().graphs())
        graphs.append(graphJson(package, graph));
    return {{"file", package.file()}, {"graphs", graphs}};
}

} // namespace vellor::tool
