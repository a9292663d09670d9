#include "applications/player/presets/presetdescription.h"

#include "applications/player/description/input.h"

namespace Zph::Applications::Player {

namespace {

InputValue readValue(const QString& text, quint32 type)
{
    InputValue value;
    for (int i = 0; i < componentCount(type); ++i) {
        const QString part = text.section(',', i, i).trimmed();
        if (isFloatType(type))
            value.setFloat(i, part.toFloat());
        else
            value.words[size_t(i)] = part.startsWith('-') ? quint32(part.toInt()) : part.toUInt();
    }
    return value;
}

PresetInput readEntry(const QDomElement& element, const QDir& directory, const InputLookUp& inputs)
{
    PresetInput entry;
    entry.identifier = element.attribute(QStringLiteral("identifier"));
    entry.uid = element.attribute(QStringLiteral("uid")).toUInt();
    entry.type = element.attribute(QStringLiteral("type")).toUInt();
    const bool whole =
        element.hasAttribute(QStringLiteral("type")) && element.hasAttribute(QStringLiteral("identifier"));
    const Input* known = whole ? nullptr : inputs(entry.uid);
    if (known) {
        entry.identifier = known->identifier();
        entry.type = known->type();
    }
    const QString value = element.attribute(QStringLiteral("value"));
    const QString path = element.attribute(QStringLiteral("filepath"));
    if (entry.type == ValueType::Text)
        entry.text = value;
    else if (entry.type == ValueType::Image)
        entry.text = path.isEmpty() ? QString() : directory.absoluteFilePath(path);
    entry.value = readValue(value, entry.type);
    return entry;
}

} // namespace

const PresetInput* PresetDescription::find(const Input& input) const
{
    const bool byName = !input.identifier().isEmpty();
    for (const PresetInput& entry : inputs)
        if (byName ? entry.identifier == input.identifier() : entry.uid == input.uid())
            return &entry;
    return nullptr;
}

const PresetInput* PresetDescription::valueFor(const Input& input) const
{
    const PresetInput* found = find(input);
    return found && found->type == input.type() ? found : nullptr;
}

bool PresetDescription::names(const Input& input) const
{
    return !input.identifier().isEmpty() && find(input) != nullptr;
}

QVector<PresetDescription> readPresets(const QDomElement& parent, const QDir& directory,
                                       const InputLookUp& inputs)
{
    QVector<PresetDescription> presets;
    for (const QDomElement& element : childElements(parent, QStringLiteral("vlrpreset"))) {
        PresetDescription preset;
        preset.label = element.attribute(QStringLiteral("label"));
        preset.pkgurl = element.attribute(QStringLiteral("pkgurl"));
        preset.description = element.attribute(QStringLiteral("description"));
        for (const QDomElement& entry : childElements(element, QStringLiteral("presetinput")))
            preset.inputs.append(readEntry(entry, directory, inputs));
        const QDomElement exported = element.firstChildElement(QStringLiteral("export"));
        if (!exported.isNull())
            preset.exportOptions = ExportSettings::fromElement(exported);
        presets.append(preset);
    }
    return presets;
}

QVector<PresetDescription> readInternalPresets(const DescriptionIndex& description, const QDir& directory,
                                               const InputLookUp& inputs)
{
    QVector<PresetDescription> presets;
    for (const DescribedItem& graph : description.graphs()) {
        const QDomElement parent = graph.element.firstChildElement(QStringLiteral("vlrpresets"));
        for (PresetDescription& preset : readPresets(parent, directory, inputs)) {
            if (preset.pkgurl.isEmpty())
                preset.pkgurl = graph.graphKey;
            presets.append(preset);
        }
    }
    return presets;
}

} // namespace Zph::Applications::Player
