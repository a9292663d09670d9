#include "applications/player/presets/presetfile.h"

#include "applications/player/description/descriptionfile.h"
#include "applications/player/description/valuetype.h"
#include "applications/player/output/savedfile.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QXmlStreamWriter>

namespace Zph::Applications::Player {

namespace {

// More than any preset file has, and little enough to be read at once.
constexpr qint64 largestFile = 64 * 1024 * 1024;

QString translated(const char* text)
{
    return QCoreApplication::translate("PresetFile", text);
}

// Half a surrogate pair, which a text that was cut may end in, has no form in a file and makes the writer
// leave out what follows.
void writeText(QXmlStreamWriter& xml, const char* name, const QString& text)
{
    xml.writeAttribute(QLatin1String(name), QString::fromUtf8(text.toUtf8()));
}

QString valueText(const PresetInput& input)
{
    if (input.type == ValueType::Text)
        return input.text;
    QStringList components;
    for (int i = 0; i < componentCount(input.type); ++i)
        components.append(isFloatType(input.type) ? QString::number(double(input.value.floatAt(i)), 'g', 6)
                                                  : QString::number(input.value.intAt(i)));
    return components.join(',');
}

void writeInput(QXmlStreamWriter& xml, const PresetInput& input, const QDir& directory)
{
    xml.writeEmptyElement(QStringLiteral("presetinput"));
    xml.writeAttribute(QStringLiteral("uid"), QString::number(input.uid));
    writeText(xml, "identifier", input.identifier);
    xml.writeAttribute(QStringLiteral("type"), QString::number(input.type));
    if (input.type == ValueType::Image)
        writeText(xml, "filepath", input.text.isEmpty() ? QString() : directory.relativeFilePath(input.text));
    else
        writeText(xml, "value", valueText(input));
}

} // namespace

void writePreset(QXmlStreamWriter& xml, const PresetDescription& preset, const QDir& directory,
                 PresetHead head)
{
    xml.writeStartElement(QStringLiteral("vlrpreset"));
    if (head == PresetHead::Whole) {
        writeText(xml, "pkgurl", preset.pkgurl);
        writeText(xml, "label", preset.label);
    }
    if (!preset.description.isEmpty())
        writeText(xml, "description", preset.description);
    for (const PresetInput& input : preset.inputs)
        writeInput(xml, input, directory);
    if (preset.exportOptions)
        preset.exportOptions->write(xml);
    xml.writeEndElement();
}

QByteArray presetDocument(const QVector<PresetDescription>& presets, const QDir& directory,
                          const QString& formatVersion)
{
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(1);
    xml.writeProcessingInstruction(QStringLiteral("xml"),
                                   QStringLiteral("version=\"1.0\" encoding=\"utf-8\""));
    xml.writeStartElement(QStringLiteral("vlrpresets"));
    xml.writeAttribute(QStringLiteral("formatversion"), formatVersion);
    xml.writeAttribute(QStringLiteral("count"), QString::number(presets.size()));
    for (const PresetDescription& preset : presets)
        writePreset(xml, preset, directory);
    xml.writeEndDocument();
    return bytes.trimmed() + '\n';
}

std::optional<QVector<PresetDescription>> readPresetFile(const QString& path, const InputLookUp& inputs,
                                                         QString& reason)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        reason = file.errorString();
        return {};
    }
    if (file.size() > largestFile) {
        reason = translated("it is too large for a preset file");
        return {};
    }
    QDomDocument document;
    if (!parseDescription(file.readAll(), document, &reason))
        return {};
    if (document.documentElement().tagName() != QLatin1String("vlrpresets")) {
        reason = translated("it holds no presets");
        return {};
    }
    QVector<PresetDescription> presets =
        readPresets(document.documentElement(), QFileInfo(path).absoluteDir(), inputs);
    for (PresetDescription& preset : presets)
        preset.fileName = path;
    return presets;
}

QString writePresetFile(const QString& path, const QVector<PresetDescription>& presets)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    return saveWhole(file, presetDocument(presets, QFileInfo(path).absoluteDir()));
}

} // namespace Zph::Applications::Player
