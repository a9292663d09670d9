#pragma once

#include "applications/player/metadata/metadatachoices.h"
#include "applications/player/metadata/metadatarecord.h"

#include <QHash>

#include <functional>

namespace Zph::Applications::Player {

struct PackageOutput;

// What goes into a bitmap's file and beside it.
struct BitmapMetadata
{
    struct File
    {
        QString path;
        QByteArray bytes;
    };

    QByteArray embedded; // to be appended by metadataTrailer(); may be empty
    QVector<File> beside;

    // To be called once the bitmap is there. What can't be opened for writing is left out, with a warning in
    // the log: the bitmap is worth having without. Returns the first other error, such as a full disk, or an
    // empty text. Any thread.
    QString writeBeside() const;
};

// Gives the bitmaps of one export their records. What is embedded only once stands in the holder of its
// package URL, and the others refer to it. Main thread.
class MetadataWriter
{
public:
    // One output of the export, in its first frame.
    struct Bitmap
    {
        // What the label of an output says for its record.
        static Bitmap of(const PackageOutput& output, const QString& path = {});

        QString packageUrl; // "pkg://bricks"
        QString identifier; // behind the first " - " of its label
        QString path;       // of the file that it becomes
    };

    struct Package
    {
        QString archiveFileName;                                     // empty: not known
        QByteArray archive;                                          // its bytes, if needsArchive()
        std::function<PresetDescription(const QString& url)> preset; // asked once for each package URL
    };

    // `firstBitmaps` are the outputs of the export: the first of a URL is its holder, unless a later one is
    // called diffuse or base colour.
    MetadataWriter(const MetadataChoices& choices, Package package, const QVector<Bitmap>& firstBitmaps);

    BitmapMetadata of(const Bitmap& bitmap);

private:
    MetadataRecord recordOf(const Bitmap& bitmap);
    const PresetDescription& presetOf(const QString& url);
    QString referenceTo(const QString& path) const;
    bool isHolder(const Bitmap& bitmap) const { return m_holders.value(bitmap.packageUrl) == bitmap.path; }

    MetadataChoices m_choices;
    Package m_package;
    QHash<QString, QString> m_holders; // paths, by URL
    QHash<QString, PresetDescription> m_presets;
};

} // namespace Zph::Applications::Player
