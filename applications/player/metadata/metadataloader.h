#pragma once

#include "applications/player/metadata/metadatarecord.h"

#include <functional>

namespace Zph::Applications::Player {

// Brings back the package and the values from an exported bitmap or a .vlrmeta file, by way of the other
// files that it names.
class MetadataLoader
{
public:
    // Asks for a file that is not where it should be: a title, the filters of a file dialog, and the path
    // where it was looked for. An empty answer ends the loading.
    using Ask = std::function<QString(const QString& title, const QString& filter, const QString& path)>;

    struct Result
    {
        QByteArray archive;
        PresetDescription preset; // for the graph that its pkgurl names; labelled by the file's name
        QString outputIdentifier;
    };

    // Whether a file ends in a record.
    static bool isAtEndOf(const QString& path);

    explicit MetadataLoader(Ask ask) : m_ask(std::move(ask)) {}

    // Nothing when it fails or was cancelled; then error() has a message for the user, or is empty.
    std::optional<Result> load(const QString& path);

    const QString& error() const { return m_error; }

private:
    std::optional<Result> follow(const QString& path, bool isReferred);
    std::optional<MetadataRecord> read(const QString& path);
    std::optional<QByteArray> archiveOf(const MetadataRecord& record, const QString& path);
    std::optional<PresetDescription> presetOf(const MetadataRecord& record, const QString& path);
    // The path of a file that a record names: beside the record's own, or where the user finds it.
    QString locate(const QString& name, const QString& path, const QString& moreFilters);
    std::nullopt_t fail(const QString& message);

    Ask m_ask;
    QString m_error;
};

} // namespace Zph::Applications::Player
