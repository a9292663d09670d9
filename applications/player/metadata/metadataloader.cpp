#include "applications/player/metadata/metadataloader.h"

#include "applications/player/description/descriptionfile.h"
#include "applications/player/metadata/metadatatrailer.h"
#include "applications/player/presets/presetfile.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

namespace Zph::Applications::Player {

namespace {

QString translated(const char* text)
{
    return QCoreApplication::translate("MetadataLoader", text);
}

QString cannotOpen(const QString& path)
{
    return translated("Cannot open file '%1'").arg(path);
}

QString noMetadata()
{
    return translated("Vellor Metadata loading failed");
}

} // namespace

std::optional<MetadataLoader::Result> MetadataLoader::load(const QString& path)
{
    m_error.clear();
    auto result = follow(path, false);
    if (result)
        result->preset.label = QFileInfo(path).completeBaseName();
    return result;
}

bool MetadataLoader::isAtEndOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && readMetadataTrailer(file);
}

std::optional<MetadataLoader::Result> MetadataLoader::follow(const QString& path, bool isReferred)
{
    const auto record = read(path);
    if (!record)
        return {};
    const QString& holder = record->archiveHolder.isEmpty() ? record->presetHolder : record->archiveHolder;
    if (!isReferred && !holder.isEmpty()) {
        const QString held = locate(holder, path, QString());
        auto result = held.isEmpty() ? std::nullopt : follow(held, true);
        if (result)
            result->outputIdentifier = record->outputIdentifier;
        return result;
    }
    const auto archive = archiveOf(*record, path);
    if (!archive)
        return {};
    const auto preset = presetOf(*record, path);
    if (!preset)
        return {};
    return Result{*archive, *preset, record->outputIdentifier};
}

std::optional<MetadataRecord> MetadataLoader::read(const QString& path)
{
    const QFileInfo info(path);
    const bool isOnItsOwn = info.suffix().compare(QLatin1String("vlrmeta"), Qt::CaseInsensitive) == 0;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(cannotOpen(path));
    if (isOnItsOwn && file.size() > largestMetadata)
        return fail(noMetadata());
    const auto document = isOnItsOwn ? std::optional(file.readAll()) : readMetadataTrailer(file);
    const auto record = document ? parseMetadata(*document, info.absoluteDir()) : std::nullopt;
    QDomDocument unused;
    if (!record)
        return fail(isOnItsOwn && !parseDescription(*document, unused) ? cannotOpen(path) : noMetadata());
    return record;
}

std::optional<QByteArray> MetadataLoader::archiveOf(const MetadataRecord& record, const QString& path)
{
    if (record.archive)
        return record.archive;
    if (record.archiveFileName.isEmpty())
        return fail(noMetadata());
    const QString archive =
        locate(record.archiveFileName, path, translated("All Vellor Archives (*.vlrar);;"));
    if (archive.isEmpty())
        return {};
    QFile file(archive);
    if (!file.open(QIODevice::ReadOnly))
        return fail(cannotOpen(archive));
    return file.readAll();
}

std::optional<PresetDescription> MetadataLoader::presetOf(const MetadataRecord& record, const QString& path)
{
    if (record.preset)
        return record.preset;
    if (record.presetFileName.isEmpty())
        return fail(translated("Vellor Presets loading failed"));
    const QString file = locate(record.presetFileName, path, translated("All Vellor presets (*.vlrprs);;"));
    if (file.isEmpty())
        return {};
    QString reason;
    auto presets = readPresetFile(
        file, [](quint32) -> const Input* { return nullptr; }, reason);
    if (!presets)
        return fail(cannotOpen(file));
    if (presets->isEmpty())
        return fail(translated("Vellor Presets loading failed"));
    presets->first().pkgurl = record.packageUrl;
    return presets->first();
}

QString MetadataLoader::locate(const QString& name, const QString& path, const QString& moreFilters)
{
    const QFileInfo own(path);
    // The name alone: a record may not lead out of its folder.
    const QString bare = QFileInfo(name).fileName();
    const QString beside = own.absoluteDir().filePath(bare);
    if (QFileInfo(beside).isFile())
        return beside;
    QString pattern = bare;
    pattern.replace(' ', '?'); // a blank would end the pattern
    return m_ask(translated("'%1' file is required to load '%2'").arg(bare, own.fileName()),
                 translated("Referenced file (%1);;").arg(pattern) + moreFilters +
                     translated("All files (*.*)"),
                 beside);
}

std::nullopt_t MetadataLoader::fail(const QString& message)
{
    m_error = message;
    return std::nullopt;
}

} // namespace Zph::Applications::Player
