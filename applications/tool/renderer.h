#pragma once

#include "applications/player/metadata/metadatawriter.h"
#include "applications/player/output/basename.h"
#include "applications/tool/generator.h"
#include "applications/tool/interrupter.h"
#include "applications/tool/progressbar.h"
#include "applications/tool/renderreport.h"
#include "applications/tool/rendersettings.h"
#include "applications/tool/taskqueue.h"

#include <deque>
#include <memory>

namespace vellor::tool {

/// Generates the selected outputs, frame by frame, hashes them and writes their files. Main thread.
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
    void renderFrame(int frame);
    void take(RenderedOutput& rendered, const Generator::Result& result);
    void encode(RenderedOutput& rendered, const Generator::Result& result,
                const Zph::Applications::Player::BitmapMetadata& metadata);
    void tellFinished(bool all);
    void showProgress(int percent);
    void prepareMetadata();
    Zph::Applications::Player::BitmapMetadata metadataOf(const RenderedOutput& rendered);
    QString pathOf(const Zph::Applications::Player::PackageOutput& output, std::optional<int> frame);

    const Package& m_package;
    Selection& m_selection;
    const RenderSettings& m_settings;
    Zph::Applications::Player::BaseNames m_names;
    std::unique_ptr<Zph::Applications::Player::MetadataWriter> m_metadata; // null: none is written
    Interrupter m_interrupter;
    Generator m_generator;
    ProgressBar m_progress;
    std::deque<RenderedOutput> m_outputs; // of the frames that are under way; references stay valid
    QString m_failure;                    // the first file that could not be written, and why
    std::mutex m_mutex;                   // m_failure, and of m_outputs what the queue sets
    int m_firstOfFrame = 0;               // in m_outputs
    int m_frame = 0;
    int m_doneOfFrame = 0;
    TaskQueue m_queue; // last, so that it ends first
};

} // namespace vellor::tool
