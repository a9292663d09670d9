#include "applications/player/metadata/metadatarecord.h"

#include "applications/player/description/descriptionfile.h"
#include "applications/player/presets/presetfile.h"

#include <QHash>
#include <QXmlStreamWriter>

namespace Zph::Applications::Player {

namespace {

struct TextAttribute
{
    const char* name;
    QString MetadataRecord::*text;
};

// Between the version and the archive, and behind it; in the order of the file.
constexpr TextAttribute firstAttributes[] = {{"pkgurl", &MetadataRecord::packageUrl},
                                             {"outputidentifier", &MetadataRecord::outputIdentifier},
                                             {"imgfilename", &MetadataRecord::imageFileName},
                                             {"vlrarfilename", &MetadataRecord::archiveFileName}};
constexpr TextAttribute lastAttributes[] = {{"vlrarembeddedref", &MetadataRecord::archiveHolder},
                                            {"presetembeddedref", &MetadataRecord::presetHolder},
                                            {"presetfilename", &MetadataRecord::presetFileName}};

bool isAlwaysWritten(const TextAttribute& attribute)
{
    return attribute.text == &MetadataRecord::packageUrl ||
           attribute.text == &MetadataRecord::outputIdentifier;
}

void writeText(QXmlStreamWriter& xml, const TextAttribute& attribute, const MetadataRecord& record)
{
    const QString& text = record.*attribute.text;
    if (!text.isEmpty() || isAlwaysWritten(attribute))
        xml.writeAttribute(QLatin1String(attribute.name), text);
}

QString presetText(const PresetDescription& preset, const QDir& directory)
{
    QString text;
    QXmlStreamWriter xml(&text);
    writePreset(xml, preset, directory, PresetHead::Embedded);
    return text;
}

} // namespace

quint32 MetadataRecord::hash(const QDir& directory) const
{
    const quint32 ofArchive = archive ? qHash(*archive, 0) : qHash(archiveFileName, 0);
    const std::optional<PresetDescription>& values = preset ? preset : presetElsewhere;
    const quint32 ofPreset = values ? qHash(presetText(*values, directory), 0) : 0;
    return ofArchive ^ ofPreset ^ qHash(packageUrl, 0);
}

QByteArray metadataDocument(const MetadataRecord& record, const QDir& directory)
{
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(1);
    xml.writeStartElement(QStringLiteral("vlrmeta"));
    xml.writeAttribute(QStringLiteral("formatversion"), QStringLiteral("1.0"));
    for (const TextAttribute& attribute : firstAttributes)
        writeText(xml, attribute, record);
    if (record.archive)
        xml.writeAttribute(QStringLiteral("vlrarcontent"), QString::fromLatin1(record.archive->toBase64()));
    for (const TextAttribute& attribute : lastAttributes)
        writeText(xml, attribute, record);
    xml.writeAttribute(QStringLiteral("hash"), QString::number(record.hash(directory)));
    if (record.preset)
        writePreset(xml, *record.preset, directory, PresetHead::Embedded);
    xml.writeEndDocument();
    return bytes.trimmed() + '\n';
}

std::optional<MetadataRecord> parseMetadata(const QByteArray& document, const QDir& directory)
{
    QDomDocument dom;
    if (!parseDescription(document, dom))
        return {};
    const QDomElement root = dom.documentElement();
    if (!root.hasAttribute(QStringLiteral("pkgurl")))
        return {};
    MetadataRecord record;
    for (const TextAttribute& attribute : firstAttributes)
        record.*attribute.text = root.attribute(QLatin1String(attribute.name));
    for (const TextAttribute& attribute : lastAttributes)
        record.*attribute.text = root.attribute(QLatin1String(attribute.name));
    if (root.hasAttribute(QStringLiteral("vlrarcontent")))
        record.archive = QByteArray::fromBase64(root.attribute(QStringLiteral("vlrarcontent")).toLatin1());
    const QVector<PresetDescription> presets =
        readPresets(root, directory, [](quint32) -> const Input* { return nullptr; });
    if (!presets.isEmpty()) {
        record.preset = presets.first();
        record.preset->pkgurl = record.packageUrl;
    }
    return record;
}

} // namespace Zph::Applications::Player
