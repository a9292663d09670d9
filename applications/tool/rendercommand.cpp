#include "applications/tool/engineloader.h"
#include "applications/tool/failure.h"
#include "applications/tool/package.h"
#include "applications/tool/packingoption.h"
#include "applications/tool/presetoption.h"
#include "applications/tool/renderer.h"
#include "applications/tool/sharedoptions.h"
#include "orncommon/image/codec/defaultcodecs.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <vellor/cpuengine.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QThread>

#include <algorithm>
#include <csignal>

namespace vellor::tool {

namespace {

using namespace Zph::Applications::Player;

/// What goes to standard output: a line for each output as it is done, or all of it as JSON at the end.
class Report
{
public:
    explicit Report(const Arguments& arguments)
        : m_isJson(arguments.has("--json")), m_isHash(arguments.has("--hash"))
    {
        m_clock.start();
    }

    void add(const RenderedOutput& rendered)
    {
        if (m_isJson)
            m_outputs.append(reportJson(rendered));
        else
            m_code = std::max(
                m_code, printOut((m_isHash ? hashLine(rendered) : reportLine(rendered)).toUtf8() + '\n'));
    }

    int finish(const Package& package)
    {
        if (!m_isJson)
            return m_code;
        const QJsonObject report{{"file", package.file()},
                                 {"engine", loadedEngineText()},
                                 {"outputs", m_outputs},
                                 {"seconds", double(m_clock.nsecsElapsed()) * 1e-9}};
        return printOut(QJsonDocument(report).toJson());
    }

private:
    bool m_isJson, m_isHash;
    int m_code = Done;
    QJsonArray m_outputs;
    QElapsedTimer m_clock;
};

/// None beside the engine where it has one thread alone.
std::size_t encodersFor(unsigned engineThreads)
{
    const int threads = engineThreads ? int(engineThreads) : QThread::idealThreadCount();
    return threads > 1 ? encoderCount(threads) : 0;
}

int runRender(const Arguments& arguments)
{
    const QString file = onlyFile(arguments);
    Orn::Image::Codec::registerDefaultCodecs(Orn::Image::Codec::SurfaceCodecManager::instance());
    RenderSettings settings = readRenderSettings(arguments);
    EngineOptions engineOptions = readEngineOptions(arguments);
    if (!settings.files.isAnimation)
        engineOptions.flags |= VELLOR_CPU_COMPUTE_ONCE;
    settings.wantsHashes = arguments.has("--hash") || arguments.has("--json");
    settings.encoders = encodersFor(engineOptions.threads);
    const QVector<CookingAlias> aliases = readAliases(arguments);
    loadEngine(QString::fromStdString(arguments.value("--engine")));
    const Package package(file, {aliases, engineOptions});
    Selection selection =
        readSelection(package, arguments,
                      settings.files.isAnimation ? std::optional(settings.files.frames.rate) : std::nullopt);
    if (settings.files.isAnimation && !selection.values.hasTime())
        throw UsageError("--frames: the package has no input $time and no --image is a sequence, all frames "
                         "would be the same");

    if (settings.files.metadata.needsArchive() && package.archive().isEmpty())
        throw UsageError(
            "--metadata: a .vlrbin has no package that could be kept; take the .vlr or the .vlrar");
    applyTemplate(arguments, package, selection, settings);
    if (arguments.has("--save-preset"))
        savePreset(QString::fromStdString(arguments.value("--save-preset")), selection);

    Report report(arguments);
    Renderer renderer(package, selection, settings);
    renderer.onRendered = [&](const RenderedOutput& rendered) { report.add(rendered); };
    renderer.run();
    if (Interrupter::signal() != 0)
        throw Interrupted();
    return report.finish(package);
}

} // namespace

const Command renderCommand{"render", "FILE",
                            "Computes the outputs of a package and writes each picture as a file, and each "
                            "number on standard output. FILE is "
                            "a .vlr, .vlrar, .vlrasm or .vlrbin.",
                            joined({renderOptions(),
                                    selectionOptions(),
                                    {kSavePreset},
                                    {{"--json", nullptr, nullptr, "a report on standard output"}},
                                    engineOptions()}),
                            runRender};

} // namespace vellor::tool
