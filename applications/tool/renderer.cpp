#include "applications/tool/renderer.h"

#include "applications/player/description/outputformatname.h"
#include "applications/player/description/outputlabel.h"
#include "applications/player/description/valuetype.h"
#include "applications/player/metadata/metadatatrailer.h"
#include "applications/player/output/pixelhash.h"
#include "applications/player/session/outputfetch.h"
#include "applications/tool/failure.h"
#include "applications/tool/package.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>

#include <utility>

namespace vellor::tool {

using namespace Zph::Applications::Player;

namespace {

constexpr std::size_t kWaitingPictures = 2; // beside those that are being encoded; each holds memory

QByteArray numberHash(quint32 type, const InputValue& value)
{
    const int bytes = componentCount(type) * int(sizeof(quint32));
    const auto* data = reinterpret_cast<const char*>(value.words.data());
    return QCryptographicHash::hash(QByteArray(data, bytes), QCryptographicHash::Md5);
}

} // namespace

Renderer::Renderer(const Package& package, Selection& selection, const RenderSettings& settings)
    : m_package(package), m_selection(selection), m_settings(settings),
      m_names(settings.pattern, defaultBaseNamePattern(package.model(), settings.isAnimation)),
      m_interrupter(package.engine()), m_generator(package, selection, m_interrupter),
      m_collector(settings.packing.files), m_queue(std::size_t(settings.encoders), kWaitingPictures)
{
    m_generator.onProgress = [this](int percent) { showProgress(percent); };
    m_generator.onOutput = [this](int place, const Generator::Result& result, double seconds) {
        ++m_doneOfFrame;
        if (isPacking()) {
            m_secondsOfPacked += seconds;
            takeForPacking(place, result);
            return;
        }
        expected(place).seconds = seconds;
        take(expected(place), result);
    };
}

void Renderer::run()
{
    if (!m_settings.folder.isEmpty() && !QDir().mkpath(m_settings.folder))
        throw Failure(Unwritable, m_settings.folder + ": the folder can't be made");
    for (m_frame = m_settings.firstFrame; m_frame <= m_settings.lastFrame && !m_interrupter.isRequested();
         ++m_frame) {
        renderFrame(m_frame);
        tellFinished(false);
    }
    m_queue.finish();
    m_progress.hide();
    tellFinished(true);
    if (!m_failure.isEmpty())
        throw Failure(Unwritable, m_failure);
}

void Renderer::renderFrame(int frame)
{
    {
        const std::lock_guard lock(m_mutex);
        m_firstOfFrame = int(m_outputs.size());
        for (const PlannedFile& file : m_settings.packing.files)
            expect(file.mainOutput(), &file);
        for (int i = 0; !isPacking() && i < m_selection.outputs.size(); ++i)
            expect(m_selection.outputs.at(i), nullptr);
    }
    m_collector.reset();
    m_doneOfFrame = 0;
    if (!m_metadata && m_settings.metadata.isEnabled() && !m_settings.folder.isEmpty())
        prepareMetadata();
    if (m_settings.isAnimation)
        m_selection.values.setTime(float(double(frame) / m_settings.framesPerSecond));
    showProgress(0);
    m_generator.run();
}

void Renderer::expect(const PackageOutput& output, const PlannedFile* packed)
{
    RenderedOutput rendered;
    rendered.output = output;
    rendered.packed = packed;
    if (m_settings.isAnimation)
        rendered.frame = m_frame;
    rendered.file = pathOf(rendered);
    m_outputs.push_back(rendered);
}

namespace {

MetadataWriter::Bitmap bitmapOf(const RenderedOutput& rendered)
{
    const QString label = exportLabel(rendered.output);
    return {label.section(" - ", 0, 0).remove(' '), label.section(" - ", 1), rendered.file};
}

} // namespace

/// The outputs of the first frame say which of them holds what is kept only once.
void Renderer::prepareMetadata()
{
    QVector<MetadataWriter::Bitmap> bitmaps;
    for (const RenderedOutput& rendered : m_outputs) {
        if (!rendered.file.isEmpty())
            bitmaps.append(bitmapOf(rendered));
    }
    m_metadata = std::make_unique<MetadataWriter>(
        m_settings.metadata,
        MetadataWriter::Package{m_package.archiveFileName(),
                                m_settings.metadata.needsArchive() ? m_package.archive() : QByteArray(),
                                [this](const QString& url) { return m_selection.values.collect(url); }},
        bitmaps);
}

BitmapMetadata Renderer::metadataOf(const RenderedOutput& rendered)
{
    return m_metadata && !rendered.file.isEmpty() ? m_metadata->of(bitmapOf(rendered)) : BitmapMetadata();
}

QString Renderer::pathOf(const RenderedOutput& rendered)
{
    const PackageOutput& output = rendered.output;
    if (m_settings.folder.isEmpty() || componentCount(output.type) > 0)
        return {};
    const PackageModel& model = m_package.model();
    const BaseNameSource source =
        rendered.packed ? packedBaseNameSource(*rendered.packed, model, m_selection.preset)
                        : baseNameSource(exportLabel(output), output.uid,
                                         outputUsageText(model.description().output(output.uid).element),
                                         m_selection.preset);
    return QDir::cleanPath(QDir(m_settings.folder)
                               .filePath(m_names.next(source, rendered.frame) + '.' +
                                         (rendered.packed ? rendered.packed->format : m_settings.format)));
}

void Renderer::take(RenderedOutput& rendered, const Generator::Result& result)
{
    if (result.isSurface()) {
        m_queue.post([this, &rendered, result, metadata = metadataOf(rendered)] {
            encode(
                rendered, [&] { return result.surface(); }, metadata);
        });
        return;
    }
    const std::lock_guard lock(m_mutex);
    if (result.isValue())
        rendered.value = componentsOf(*result.value());
    rendered.hash = numberHash(rendered.output.type, rendered.value);
    rendered.isDone = true;
}

void Renderer::takeForPacking(int place, const Generator::Result& result)
{
    const auto pack = [this](int file, const PackingPictures& pictures) {
        RenderedOutput& rendered = expected(file);
        rendered.seconds = std::exchange(m_secondsOfPacked, 0.0);
        m_queue.post([this, &rendered, own = pictures, metadata = metadataOf(rendered)]() mutable {
            const auto packed = [&] { // what it was made of goes before it is written
                const PackingPictures sources = std::exchange(own, {});
                return packPicture(*rendered.packed, sources, rendered.packed->depth);
            };
            encode(rendered, packed, metadata);
        });
    };
    m_collector.add(m_selection.outputs.at(place).uid, result.surface(), pack);
}

namespace {

QString formatOf(const RenderedOutput& rendered, const Orn::Surfaces::Surface& picture)
{
    return rendered.packed ? packedFormatName(picture.format())
                           : outputFormatName(rendered.output.pixelFormat);
}

} // namespace

void Renderer::encode(RenderedOutput& rendered, const std::function<SurfacePtr()>& makePicture,
                      const BitmapMetadata& metadata)
{
    QElapsedTimer clock;
    clock.start();
    const SurfacePtr picture = makePicture();
    QString error = picture ? write(rendered, picture, metadata) : "there is no memory for the picture";
    const double seconds = double(clock.nsecsElapsed()) * 1e-9;
    const QByteArray hash = picture && m_settings.wantsHashes ? pixelHash(*picture) : QByteArray();
    const std::lock_guard lock(m_mutex);
    if (!error.isEmpty() && !m_interrupter.isRequested()) {
        m_failure = (rendered.file.isEmpty() ? outputName(rendered) : rendered.file) + ": " + error;
        m_interrupter.request();
    }
    if (picture) {
        rendered.width = picture->width();
        rendered.height = picture->height();
        rendered.format = formatOf(rendered, *picture);
    }
    rendered.hash = hash;
    rendered.encodingSeconds = seconds;
    rendered.fileBytes = rendered.file.isEmpty() ? 0 : QFileInfo(rendered.file).size();
    rendered.hasFailed = !error.isEmpty();
    rendered.isDone = true;
}

/// Returns what went wrong, or an empty text.
QString Renderer::write(const RenderedOutput& rendered, const SurfacePtr& picture,
                        const BitmapMetadata& metadata)
{
    if (rendered.file.isEmpty())
        return {};
    PictureFileOptions options{m_settings.format, m_settings.depth, &m_interrupter.flag()};
    if (rendered.packed) {
        options.format = rendered.packed->format;
        options.depth = rendered.packed->depth;
    }
    if (!metadata.embedded.isEmpty())
        options.trailer = [&](qint64 size) { return metadataTrailer(metadata.embedded, size); };
    const QString error = writePictureFile(picture, rendered.file, options);
    return error.isEmpty() ? metadata.writeBeside() : error;
}

/// Tells of what is done from the front on, as far as it goes; at the end of everything that is done.
void Renderer::tellFinished(bool all)
{
    for (;;) {
        std::unique_lock lock(m_mutex);
        if (m_outputs.empty() || (!all && !m_outputs.front().isDone))
            return;
        const RenderedOutput rendered = std::move(m_outputs.front());
        m_outputs.pop_front();
        lock.unlock();
        if (rendered.isDone && !rendered.hasFailed && onRendered) {
            m_progress.hide();
            onRendered(rendered);
        }
    }
}

void Renderer::showProgress(int percent)
{
    const int frames = m_settings.lastFrame - m_settings.firstFrame + 1;
    const int outputs = m_selection.outputs.size();
    QString text;
    if (m_settings.isAnimation)
        text = QStringLiteral("frame %1 of %2").arg(m_frame - m_settings.firstFrame + 1).arg(frames);
    if (outputs > 1)
        text += QStringLiteral("%1output %2 of %3")
                    .arg(text.isEmpty() ? "" : ", ")
                    .arg(std::min(m_doneOfFrame + 1, outputs))
                    .arg(outputs);
    m_progress.show((m_frame - m_settings.firstFrame + percent * 0.01) / frames, text);
}

} // namespace vellor::tool
