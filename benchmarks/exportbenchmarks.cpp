// Exporting pictures: by the window's dialog, beside generating them and then writing them one by one, and by
// `vellor render`, beside the longer of the two. Where both keep all processors busy, no program can be done
// before their processor time shared among the processors, and that is what stands beside it.

#include "applications/player/output/dialog/render.h"
#include "applications/player/output/taskqueue.h"
#include "benchmarks/exportparts.h"
#include "benchmarks/openwindow.h"

#include "applications/player/tweaks/tweakbase.h"

#include <vellor/cpuengine.h>

#include <QApplication>
#include <QDir>
#include <QProcess>
#include <QThread>

#include <algorithm>

#include <sys/resource.h>

namespace {

using namespace Zph::Applications::Player;

constexpr int kTurns = 3;
const ExportJob kJobs[] = {
    {"6 outputs of 2048, tga", "material60", {}, 2048, 1, "tga"},
    {"6 outputs of 2048, png", "material60", {}, 2048, 1, "png"},
    {"100 frames of 512, png", "water", {"basecolor"}, 512, 100, "png"},
};

/// A folder that is empty when an export begins.
class Folder
{
public:
    QString path() const { return m_parent.filePath("out"); }
    void empty() const { QDir(path()).removeRecursively(); }
    void expect(std::size_t files) const
    {
        if (QDir(path()).entryList(QDir::Files).size() != int(files))
            qFatal("The export didn't write its files");
    }

private:
    QTemporaryDir m_parent;
};

/// The export dialog of a window, unseen, as by "Re-Export".
class WindowExport
{
public:
    WindowExport(const ExportJob& job, const ExportParts& parts)
        : m_job(job), m_parts(parts), m_window(Packages::path(job.package))
    {
        m_window.window().openRenderDialog();
        m_dialog = m_window.window().findChild<Render*>();
        m_dialog->hide();
    }

    EngineAlone::Uids shownOutputs() const { return m_window.shownOutputs(); }

    Span run()
    {
        m_window.open(); // so that the engine has nothing of the last turn
        setSize();
        m_dialog->applyExportSettings(settings());
        m_folder.empty();
        const Span time = Comparison::time([this] {
            m_dialog->exportAgain();
            while (m_dialog->isRunning())
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        });
        m_folder.expect(m_parts.uids().size() * std::size_t(m_job.frames));
        return time;
    }

private:
    void setSize()
    {
        const InputValue value = InputValue::fromInts(m_job.sizeExponent(), m_job.sizeExponent());
        TweakBase& size = m_window.tweak("$outputsize");
        if (!size.value().equals(value, 2))
            m_window.change(size, value);
    }

    ExportSettings settings() const
    {
        ExportSettings settings;
        settings.timeEnd = m_job.frames - 1;
        settings.dir = m_folder.path();
        settings.format = m_job.format;
        for (const PackageOutput& output : m_parts.package().outputs())
            settings.disabled.insert(output.uid);
        for (const quint32 uid : m_parts.uids())
            settings.disabled.erase(uid);
        return settings;
    }

    const ExportJob& m_job;
    const ExportParts& m_parts;
    OpenWindow m_window;
    Render* m_dialog;
    Folder m_folder;
};

void exportFromWindow(benchmark::State& state, const ExportJob& job)
{
    ExportParts parts(job);
    WindowExport exporting(job, parts);
    exporting.run();
    Comparison comparison(state, "generation, then encoding on one thread");
    for (auto turn : state) {
        const Span whole = exporting.run();
        const Span generation = parts.generate(exporting.shownOutputs());
        const Span encoding = parts.encode(0);
        comparison.add(whole, generation + encoding);
        comparison.addPart("generation alone", generation);
        comparison.addPart("encoding alone", encoding);
    }
    state.counters["aim"] = -1.1;
}

double processorTimeOfChildren()
{
    rusage usage = {};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto milliseconds = [](const timeval& time) {
        return double(time.tv_sec) * 1e3 + double(time.tv_usec) * 1e-3;
    };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

QStringList toolArguments(const ExportJob& job, const QString& folder)
{
    QStringList arguments{
        "render", Packages::path(job.package),          "-o", folder, "--format", job.format,
        "--size", QStringLiteral("%1x%1").arg(job.side)};
    for (const QString& output : job.outputs)
        arguments << "--output" << output;
    if (job.frames > 1)
        arguments << "--frames" << QStringLiteral("0-%1").arg(job.frames - 1);
    return arguments;
}

/// The program as it is started in a shell, from its start to its end.
Span runTool(const QStringList& arguments)
{
    const double before = processorTimeOfChildren();
    Span time = Comparison::time([&] {
        QProcess tool;
        tool.start(BENCHMARK_TOOL, arguments);
        if (!tool.waitForFinished(-1) || tool.exitCode() != 0)
            qFatal("%s", tool.readAllStandardError().constData());
    });
    time.processor = processorTimeOfChildren() - before;
    return time;
}

/// The least that generating and encoding at once can take: the longer of the two, or all their work shared
/// among the processors.
Span bound(const Span& generation, const Span& encoding)
{
    const double processor = generation.processor + encoding.processor;
    return {std::max({generation.clock, encoding.clock, processor / QThread::idealThreadCount()}), processor};
}

void exportFromTool(benchmark::State& state, const ExportJob& job)
{
    ExportParts parts(job, job.frames > 1 ? 0 : VELLOR_CPU_COMPUTE_ONCE);
    const Folder folder;
    const QStringList arguments = toolArguments(job, folder.path());
    Comparison comparison(state, "the longer of the two alone");
    for (auto turn : state) {
        folder.empty();
        const Span whole = runTool(arguments);
        folder.expect(parts.uids().size() * std::size_t(job.frames));
        const Span generation = parts.generate();
        const Span encoding = parts.encode(encoderCount(QThread::idealThreadCount()));
        const Span least = bound(generation, encoding);
        if (least.clock > std::max(generation.clock, encoding.clock))
            comparison.setRival("the processor time of the two, shared");
        comparison.add(whole, least);
        comparison.addPart("generation alone", generation);
        comparison.addPart("encoding alone", encoding);
    }
    state.counters["aim"] = -1.0;
}

void add(const std::string& who, const ExportJob& job, void (*measure)(benchmark::State&, const ExportJob&))
{
    benchmark::RegisterBenchmark((who + job.name).c_str(), measure, job)->Iterations(kTurns)->UseManualTime();
}

const bool registered = [] {
    for (const ExportJob& job : kJobs) {
        add("export from the window, ", job, &exportFromWindow);
        add("export by vellor render, ", job, &exportFromTool);
    }
    return true;
}();

} // namespace
