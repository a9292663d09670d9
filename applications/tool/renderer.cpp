#include "applications/tool/renderer.h"

#include "applications/player/description/outputformatname.h"
#include "applications/player/description/valuetype.h"
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

QByteArray numberHash(quint32 type, const InputValue& value)
{
    const int bytes = componentCount(type) * int(sizeof(quint32));
    const auto* data = reinterpret_cast<const char*>(value.words.data());
    return QCryptographicHash::hash(QByteArray(data, bytes), QCryptographicHash::Md5);
}

ExportChoices choicesOf(const RenderSettings& settings, const Selection& selection,
                        const Interrupter& interrupter)
{
    ExportChoices choices = settings.files;
    choices.preset = selection.preset;
    choices.picture.cancelled = &interrupter.flag();
    return choices;
}

MetadataWriter::Package metadataSource(const Package& package, const Selection& selection,
                                       const RenderSettings& settings)
{
    return {package.archiveFileName(),
            settings.files.metadata.needsArchive() ? package.archive() : QByteArray(),
            [&selection](const QString& url) { return selection.values.collectForWindow(url); }};
}

QString formatOf(const RenderedOutput& rendered, const Orn::Surfaces::Surface& picture)
{
    return rendered.packed ? packedFormatName(picture.format())
                           : outputFormatName(rendered.output.pixelFormat);
}

} // namespace

Renderer::Renderer(const Package& package, Selection& selection, const RenderSettings& settings)
    : m_package(package), m_selection(selection), m_settings(settings), m_interrupter(package.engine()),
      m_plan(package.model(), selection.outputs, choicesOf(settings, selection, m_interrupter),
             metadataSource(package, selection, settings)),
      m_generator(package, selection, m_interrupter), m_queue(settings.encoders, waitingPictures)
{
    m_generator.onProgress = [this](int percent) { showProgress(percent); };
    m_generator.onOutput = [this](int place, const Generator::Result& result, double seconds) {
        ++m_doneOfFrame;
        m_seconds += seconds;
        take(place, result);
    };
}

void Renderer::run()
{
    const QString& folder = m_settings.files.folder;
    if (!folder.isEmpty() && !QDir().mkpath(folder))
        throw Failure(Unwritable, folder + ": the folder can't be made");
    for (m_frame = 0; m_frame < m_plan.frameCount() && !m_interrupter.isRequested(); ++m_frame) {
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
    m_plan.startFrame(frame);
    {
        const std::lock_guard lock(m_mutex);
        m_firstOfFrame = int(m_outputs.size());
        for (int file = 0; file < m_plan.fileCount(); ++file)
            expect(file, frame);
    }
    m_doneOfFrame = 0;
    if (m_settings.files.isAnimation)
        m_selection.values.setTime(float(m_plan.seconds(frame)));
    showProgress(0);
    m_generator.run();
}

void Renderer::expect(int file, int frame)
{
    RenderedOutput rendered;
    rendered.output = m_plan.mainOutput(file);
    rendered.packed = m_plan.packed(file);
    if (m_settings.files.isAnimation)
        rendered.frame = m_settings.files.frames.number(frame);
    rendered.file = m_plan.path(file);
    m_outputs.push_back(rendered);
}

void Renderer::take(int output, const Generator::Result& result)
{
    if (!result.isSurface() && !m_plan.isPacking()) {
        takeNumber(expected(output), result);
        return;
    }
    m_plan.take(output, result.surface(), [this](int file, const ExportPlan::MakePicture& make) {
        RenderedOutput& rendered = expected(file);
        rendered.seconds = std::exchange(m_seconds, 0.0);
        m_queue.post(
            [this, &rendered, make, planned = m_plan.file(file)] { encode(rendered, planned, make); });
    });
}

void Renderer::takeNumber(RenderedOutput& rendered, const Generator::Result& result)
{
    const std::lock_guard lock(m_mutex);
    if (result.isValue())
        rendered.value = componentsOf(*result.value());
    rendered.hash = numberHash(rendered.output.type, rendered.value);
    rendered.seconds = std::exchange(m_seconds, 0.0);
    rendered.isDone = true;
}

void Renderer::encode(RenderedOutput& rendered, const ExportPlan::File& file,
                      const ExportPlan::MakePicture& makePicture)
{
    QElapsedTimer clock;
    clock.start();
    const SurfacePtr picture = makePicture();
    const QString error = picture ? file.write(picture).text : "there is no memory for the picture";
    const double seconds = double(clock.nsecsElapsed()) * 1e-9;
    const QByteArray hash = picture && m_settings.wantsHashes ? pixelHash(*picture) : QByteArray();
    const std::lock_guard lock(m_mutex);
    if (!error.isEmpty() && !m_interrupter.isRequested()) {
        m_failure = (file.path.isEmpty() ? outputName(rendered) : file.path) + ": " + error;
        m_interrupter.request();
    }
    if (picture) {
        rendered.width = picture->width();
        rendered.height = picture->height();
        rendered.format = formatOf(rendered, *picture);
    }
    rendered.hash = hash;
    rendered.encodingSeconds = seconds;
    rendered.fileBytes = file.path.isEmpty() ? 0 : QFileInfo(file.path).size();
    rendered.hasFailed = !error.isEmpty();
    rendered.isDone = true;
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
    const int frames = m_plan.frameCount();
    const int outputs = m_selection.outputs.size();
    QString text;
    if (m_settings.files.isAnimation)
        text = QStringLiteral("frame %1 of %2").arg(m_frame + 1).arg(frames);
    if (outputs > 1)
        text += QStringLiteral("%1output %2 of %3")
                    .arg(text.isEmpty() ? "" : ", ")
                    .arg(std::min(m_doneOfFrame + 1, outputs))
                    .arg(outputs);
    m_progress.show((m_frame + percent * 0.01) / frames, text);
}

} // namespace vellor::tool
