#pragma once

#include "applications/player/metadata/metadatawriter.h"
#include "applications/player/output/basename.h"
#include "applications/player/output/framerange.h"
#include "applications/player/output/picturefile.h"
#include "applications/player/packing/packingcollector.h"

#include <memory>

namespace Zph::Applications::Player {

// What an export was asked for, beside its outputs.
struct ExportChoices
{
    QString folder;             // empty: no file is written
    QString pattern;            // blank: the usual one
    QString preset;             // what %R stands for
    PictureFileOptions picture; // a trailer has no say
    bool isAnimation = false;
    FrameRange frames; // of an animation
    MetadataChoices metadata;
    PackingPlan packing; // settled; without files, each output is one
};

// Which files an export writes, and what goes into them. Whoever exports with the same choices, values and
// outputs writes the same files, byte for byte, in whatever order an engine gives the pictures. Main thread.
class ExportPlan
{
public:
    using SurfacePtr = QSharedPointer<Orn::Surfaces::Surface>;

    // One file of the export.
    struct File
    {
        QString path; // empty: none
        BitmapMetadata metadata;
        PictureFileOptions picture;

        // Any thread.
        PictureFileError write(const SurfacePtr& surface) const;
    };

    // `outputs` may have numbers among them, which have no file; those of a packing are its own. Of `made`,
    // the values are asked for with the first file of a graph.
    ExportPlan(const PackageModel& package, const QVector<PackageOutput>& outputs,
               const ExportChoices& choices, MetadataWriter::Package made);

    // What is needed of the engine in each frame.
    const QVector<PackageOutput>& outputs() const { return m_outputs; }
    int frameCount() const { return m_choices.isAnimation ? m_choices.frames.count : 1; }
    // The time of a frame of an animation.
    double seconds(int frame) const { return m_choices.frames.seconds(frame); }
    bool isPacking() const { return !m_choices.packing.files.isEmpty(); }
    // Of a frame. Without a packing, files and outputs have the same places.
    int fileCount() const { return isPacking() ? m_choices.packing.files.size() : m_outputs.size(); }
    // Null without a packing.
    const PlannedFile* packed(int file) const;
    // The output that speaks for a file.
    const PackageOutput& mainOutput(int file) const;

    // Gives the files of a frame their names, and forgets the pictures. Each frame once, from 0 up.
    void startFrame(int frame);
    // Of the frame that was started last.
    const QString& path(int file) const { return m_paths[file]; }
    File file(int file);

    // Makes a file's picture, once; null when there is no memory. Any thread.
    using MakePicture = std::function<SurfacePtr()>;
    using Complete = std::function<void(int file, const MakePicture& make)>;
    // Takes the picture of an output, and tells of the files that became complete by it.
    void take(int output, const SurfacePtr& picture, const Complete& complete);

private:
    QString nextPath(int file, int frame);
    MetadataWriter::Bitmap bitmap(int file) const;
    void findHolders();

    const PackageModel& m_package;
    ExportChoices m_choices;
    QVector<PackageOutput> m_outputs;
    MetadataWriter::Package m_made;
    BaseNames m_names;
    PackingCollector m_collector;
    QVector<QString> m_paths;
    std::unique_ptr<MetadataWriter> m_metadata; // null: none is written, or there was no frame yet
};

} // namespace Zph::Applications::Player
