#pragma once

#include "applications/player/presets/presetdescription.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace Zph::Applications::Player {

// What made an exported bitmap: the package, the values of its inputs, the output. It stands at the end of
// the bitmap, or in a file beside it. Texts that say nothing are empty.
struct MetadataRecord
{
    QString packageUrl;       // of the graph
    QString outputIdentifier; // as exportLabel() has it behind its first " - "
    QString imageFileName;    // of the bitmap; only in a file of its own
    QString archiveFileName;
    std::optional<QByteArray> archive; // the bytes of the package's archive
    QString archiveHolder;             // the file whose record has the archive, in place of this one
    QString presetHolder;              // the same for the preset
    QString presetFileName;            // beside the bitmap
    std::optional<PresetDescription> preset;
    std::optional<PresetDescription> presetElsewhere; // what the record only refers to; not read, not written

    // A number that tells apart what was made of different packages, values or graphs, wherever the values
    // stand. `directory` is the bitmap's, as for metadataDocument().
    quint32 hash(const QDir& directory) const;
};

// The record as UTF-8 text. Paths of images are relative to `directory`. The same record gives the same
// bytes.
QByteArray metadataDocument(const MetadataRecord& record, const QDir& directory);

// Reads such a text; nothing, when it is none. The preset's images are resolved against `directory`.
std::optional<MetadataRecord> parseMetadata(const QByteArray& document, const QDir& directory);

} // namespace Zph::Applications::Player
