#pragma once

#include "applications/player/metadata/metadatawriter.h"
#include "applications/player/output/basename.h"
#include "applications/player/packing/packingcollector.h"
#include "applications/tool/generator.h"
#include "applications/tool/interrupter.h"
#include "applications/tool/progressbar.h"
#include "applications/tool/renderreport.h"
#include "applications/tool/rendersettings.h"
#include "applications/tool/taskqueue.h"

#include <deque>
#include <memory>

namespace vellor::tool {

/// Generates the selected outputs, frame by frame, packs them where the settings say so, hashes them and
/// writes their files. Main thread.
class Renderer
{
public:
    /// All of them outlive the object.
    Renderer(const Package& package, Selection& selection, const RenderSettings& settings);

    /// Called for what is done, in the order of frames and outputs, on the main thread.
    std::function<void(const RenderedOutput&)> onRendered;

    /// Throws Failure. After an interruption by a signal it returns, and files are missing; none is
    /// half-written.
    void run();

private:
    using SurfacePtr = QSharedPointer<Orn::Surfaces::Surface>;

    void renderFrame(int frame);
    void expect(const Zph::Applications::Player::PackageOutput& output,
                const Zph::Applications::Player::PlannedFile* packed);
    bool isPacking() const { return !m_settings.packing.files.isEmpty(); }
    RenderedOutput& expected(int place) { return m_outputs[std::size_t(m_firstOfFrame + place)]; }
    void take(RenderedOutput& rendered, const Generator::Result& result);
    void takeForPacking(int place, const Generator::Result& result);
    void encode(RenderedOutput& rendered, const std::function<SurfacePtr()>& makePicture,
                const Zph::Applications::Player::BitmapMetadata& metadata);
    QString write(const RenderedOutput& rendered, const SurfacePtr& picture,
                  const Zph::Applications::Player::BitmapMetadata& metadata);
    void tellFinished(bool all);
    void showProgress(int percent);
    void prepareMetadata();
    Zph::Applications::Player::BitmapMetadata metadataOf(const RenderedOutput& rendered);
    QString pathOf(const RenderedOutput& rendered);

    const Package& m_package;
    Selection& m_selection;
    const RenderSettings& m_settings;
    Zph::Applications::Player::BaseNames m_names;
    std::unique_ptr<Zph::Applications::Player::MetadataWriter> m_metadata; // null: none is written
    Interrupter m_interrupter;
    Generator m_generator;
    ProgressBar m_progress;
    Zph::Applications::Player::PackingCollector m_collector;
    double m_secondsOfPacked = 0;         // of generation, for the next file that is packed
    std::deque<RenderedOutput> m_outputs; // of the frames that are under way; references stay valid
    QString m_failure;                    // the first file that could not be written, and why
    std::mutex m_mutex;                   // m_failure, and of m_outputs what the queue sets
    int m_firstOfFrame = 0;               // in m_outputs
    int m_frame = 0;
    int m_doneOfFrame = 0;
    TaskQueue m_queue; // last, so that it ends first
};

} // namespace vellor::tool
