#include "applications/player/metadata/metadatawriter.h"

#include "applications/player/output/basename.h"
#include "applications/player/output/savedfile.h"
#include "applications/player/presets/presetfile.h"

#include <QDebug>
#include <QFileInfo>

namespace Zph::Applications::Player {

namespace {

QString beside(const QString& path, const char* suffix)
{
    const QFileInfo info(path);
    return info.dir().filePath(info.completeBaseName() + QLatin1Char('.') + QLatin1String(suffix));
}

// The one that people would open first.
bool isColour(const QString& identifier)
{
    const QString inner = identifier.section(QLatin1String("(id:"), 1).section(')', 0, 0);
    const QString name = (inner.isEmpty() ? identifier : inner).toLower();
    return name == QLatin1String("diffuse") || name == QLatin1String("basecolor");
}

} // namespace

MetadataWriter::Bitmap MetadataWriter::Bitmap::of(const PackageOutput& output, const QString& path)
{
    static const QString separator = QStringLiteral(" - ");
    const QString label = exportLabel(output);
    return {label.section(separator, 0, 0).remove(' '), label.section(separator, 1), path};
}

MetadataWriter::MetadataWriter(const MetadataChoices& choices, Package package,
                               const QVector<Bitmap>& firstBitmaps)
    : m_choices(choices), m_package(std::move(package))
{
    for (const Bitmap& bitmap : firstBitmaps) {
        if (!m_holders.contains(bitmap.packageUrl) || isColour(bitmap.identifier))
            m_holders.insert(bitmap.packageUrl, bitmap.path);
    }
}

QString BitmapMetadata::writeBeside() const
{
    for (const File& entry : beside) {
        QSaveFile file(entry.path);
        if (!file.open(QIODevice::WriteOnly)) {
            qWarning().noquote() << "Cannot write" << entry.path << ':' << file.errorString();
            continue;
        }
        const QString error = saveWhole(file, entry.bytes);
        if (!error.isEmpty())
            return error;
    }
    return {};
}

BitmapMetadata MetadataWriter::of(const Bitmap& bitmap)
{
    BitmapMetadata metadata;
    if (!m_choices.isEnabled())
        return metadata;
    const QDir directory = QFileInfo(bitmap.path).absoluteDir();
    if (m_choices.values == MetadataChoices::Values::File) {
        PresetDescription preset = presetOf(bitmap.packageUrl);
        preset.pkgurl = bitmap.packageUrl;
        preset.label = QFileInfo(bitmap.path).completeBaseName();
        metadata.beside.append({beside(bitmap.path, "vlrprs"), presetDocument({preset}, directory, "1.0")});
    }
    MetadataRecord record = recordOf(bitmap);
    if (m_choices.metadata == MetadataChoices::Metadata::Embedded) {
        metadata.embedded = metadataDocument(record, directory);
        return metadata;
    }
    record.imageFileName = QFileInfo(bitmap.path).fileName();
    metadata.beside.append({beside(bitmap.path, "vlrmeta"), metadataDocument(record, directory)});
    return metadata;
}

// The name of the file that has the record of a bitmap.
QString MetadataWriter::referenceTo(const QString& path) const
{
    const bool isEmbedded = m_choices.metadata == MetadataChoices::Metadata::Embedded;
    return QFileInfo(isEmbedded ? path : beside(path, "vlrmeta")).fileName();
}

MetadataRecord MetadataWriter::recordOf(const Bitmap& bitmap)
{
    using Choices = MetadataChoices;
    MetadataRecord record;
    record.packageUrl = bitmap.packageUrl;
    record.outputIdentifier = bitmap.identifier;
    record.archiveFileName = m_package.archiveFileName;
    const QString holder = referenceTo(m_holders.value(bitmap.packageUrl));

    if (m_choices.archive == Choices::Archive::EmbeddedOnce && !isHolder(bitmap))
        record.archiveHolder = holder;
    else if (m_choices.archive != Choices::Archive::Reference && !m_package.archive.isEmpty())
        record.archive = m_package.archive;

    if (m_choices.values == Choices::Values::File)
        record.presetFileName = QFileInfo(beside(bitmap.path, "vlrprs")).fileName();
    else if (m_choices.values == Choices::Values::EmbeddedOnce && !isHolder(bitmap))
        record.presetHolder = holder;
    const bool isReference = !record.presetFileName.isEmpty() || !record.presetHolder.isEmpty();
    (isReference ? record.presetElsewhere : record.preset) = presetOf(bitmap.packageUrl);
    return record;
}

const PresetDescription& MetadataWriter::presetOf(const QString& url)
{
    auto known = m_presets.find(url);
    if (known == m_presets.end())
        known = m_presets.insert(url, m_package.preset(url));
    return *known;
}

} // namespace Zph::Applications::Player
