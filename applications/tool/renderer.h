#pragma once

#include "applications/player/metadata/exportplan.h"
#include "applications/player/output/taskqueue.h"
#include "applications/tool/generator.h"
#include "applications/tool/interrupter.h"
#include "applications/tool/progressbar.h"
#include "applications/tool/renderreport.h"
#include "applications/tool/rendersettings.h"

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
    void expect(int file, int frame);
    RenderedOutput& expected(int file) { return m_outputs[std::size_t(m_firstOfFrame + file)]; }
    void take(int output, const Generator::Result& result);
    void takeNumber(RenderedOutput& rendered, const Generator::Result& result);
    void encode(RenderedOutput& rendered, const Zph::Applications::Player::ExportPlan::File& file,
                const std::function<SurfacePtr()>& makePicture);
    void tellFinished(bool all);
    void showProgress(int percent);

    const Package& m_package;
    Selection& m_selection;
    const RenderSettings& m_settings;
    Interrupter m_interrupter;
    Zph::Applications::Player::ExportPlan m_plan;
    Generator m_generator;
    ProgressBar m_progress;
    double m_seconds = 0;                 // of generation, since the last file
    std::deque<RenderedOutput> m_outputs; // of the frames that are under way; references stay valid
    QString m_failure;                    // the first file that could not be written, and why
    std::mutex m_mutex;                   // m_failure, and of m_outputs what the queue sets
    int m_firstOfFrame = 0;               // in m_outputs
    int m_frame = 0;
    int m_doneOfFrame = 0;
    Zph::Applications::Player::TaskQueue m_queue; // last, so that it ends first
};

} // namespace vellor::tool
