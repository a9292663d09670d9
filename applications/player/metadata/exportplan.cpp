#include "applications/player/metadata/exportplan.h"

#include "applications/player/description/outputlabel.h"
#include "applications/player/description/valuetype.h"
#include "applications/player/metadata/metadatatrailer.h"

#include <QDir>

#include <utility>

namespace Zph::Applications::Player {

PictureFileError ExportPlan::File::write(const SurfacePtr& surface) const
{
    if (path.isEmpty())
        return {};
    PictureFileOptions options = picture;
    if (!metadata.embedded.isEmpty())
        options.trailer = [this](qint64 size) { return metadataTrailer(metadata.embedded, size); };
    const PictureFileError error = writePictureFile(surface, path, options);
    return error ? error : PictureFileError{metadata.writeBeside()};
}

ExportPlan::ExportPlan(const PackageModel& package, const QVector<PackageOutput>& outputs,
                       const ExportChoices& choices, MetadataWriter::Package made)
    : m_package(package), m_choices(choices),
      m_outputs(choices.packing.files.isEmpty() ? outputs : choices.packing.outputs()),
      m_made(std::move(made)), m_names(choices.pattern, defaultBaseNamePattern(package, choices.isAnimation)),
      m_collector(m_choices.packing.files)
{
}

const PlannedFile* ExportPlan::packed(int file) const
{
    return isPacking() ? &m_choices.packing.files.at(file) : nullptr;
}

const PackageOutput& ExportPlan::mainOutput(int file) const
{
    return isPacking() ? packed(file)->mainOutput() : m_outputs.at(file);
}

void ExportPlan::startFrame(int frame)
{
    m_collector.reset();
    m_paths.clear();
    for (int file = 0; file < fileCount(); ++file)
        m_paths.append(nextPath(file, frame));
    if (!m_metadata && m_choices.metadata.isEnabled() && !m_choices.folder.isEmpty())
        findHolders();
}

QString ExportPlan::nextPath(int file, int frame)
{
    const PackageOutput& output = mainOutput(file);
    if (m_choices.folder.isEmpty() || componentCount(output.type) > 0)
        return {};
    const QString usage = outputUsageText(m_package.description().output(output.uid).element);
    const BaseNameSource source =
        isPacking() ? packedBaseNameSource(*packed(file), m_package, m_choices.preset)
                    : baseNameSource(exportLabel(output), output.uid, usage, m_choices.preset);
    const std::optional<int> number =
        m_choices.isAnimation ? std::optional<int>(m_choices.frames.number(frame)) : std::nullopt;
    const QString& format = isPacking() ? packed(file)->format : m_choices.picture.format;
    return QDir::cleanPath(QDir(m_choices.folder).filePath(m_names.next(source, number) + '.' + format));
}

// The files of the first frame say which of them holds what is kept only once.
void ExportPlan::findHolders()
{
    QVector<MetadataWriter::Bitmap> bitmaps;
    for (int file = 0; file < fileCount(); ++file)
        if (!m_paths[file].isEmpty())
            bitmaps.append(bitmap(file));
    m_metadata = std::make_unique<MetadataWriter>(m_choices.metadata, m_made, bitmaps);
}

MetadataWriter::Bitmap ExportPlan::bitmap(int file) const
{
    return MetadataWriter::Bitmap::of(mainOutput(file), m_paths[file]);
}

ExportPlan::File ExportPlan::file(int file)
{
    File planned{m_paths[file], {}, m_choices.picture};
    if (isPacking()) {
        planned.picture.format = packed(file)->format;
        planned.picture.depth = packed(file)->depth;
    }
    if (m_metadata && !planned.path.isEmpty())
        planned.metadata = m_metadata->of(bitmap(file));
    return planned;
}

void ExportPlan::take(int output, const SurfacePtr& picture, const Complete& complete)
{
    if (!isPacking()) {
        complete(output, [picture] { return picture; });
        return;
    }
    m_collector.add(m_outputs.at(output).uid, picture, [&](int file, const PackingPictures& pictures) {
        complete(file, [planned = *packed(file), own = pictures]() mutable {
            const PackingPictures sources = std::exchange(own, {}); // they go before the file is written
            return packPicture(planned, sources, planned.depth);
        });
    });
}

} // namespace Zph::Applications::Player
