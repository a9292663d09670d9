#include "applications/tool/engineloader.h"
#include "applications/tool/failure.h"
#include "applications/tool/generator.h"
#include "applications/tool/interrupter.h"
#include "applications/tool/package.h"
#include "applications/tool/profilereport.h"
#include "applications/tool/progressbar.h"
#include "applications/tool/sharedoptions.h"
#include "orncommon/image/codec/defaultcodecs.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <QJsonDocument>

namespace vellor::tool {

namespace {

using namespace Zph::Applications::Player;

Profile measure(const Package& package, Selection& selection)
{
    Profile profile;
    const Interrupter interrupter(package.engine());
    Generator generator(package, selection, interrupter);
    Profiler profiler(package.engine().handleOrNull());
    ProgressBar progress;
    generator.onProgress = [&](int percent) { progress.show(percent * 0.01, QStringLiteral("measuring")); };
    generator.onOutput = [&](int place, const Generator::Result&, double seconds) {
        profile.outputs.push_back({selection.outputs[place], seconds});
        profile.seconds += seconds;
    };
    generator.run();
    profile.hasSteps = profiler.isAvailable();
    profile.steps = profiler.steps();
    return profile;
}

int runProfile(const Arguments& arguments)
{
    const QString file = onlyFile(arguments);
    Orn::Image::Codec::registerDefaultCodecs(Orn::Image::Codec::SurfaceCodecManager::instance());
    const EngineOptions engineOptions = readEngineOptions(arguments);
    const QVector<CookingAlias> aliases = readAliases(arguments);
    loadEngine(QString::fromStdString(arguments.value("--engine")));
    const Package package(file, {aliases, engineOptions});
    Selection selection = readSelection(package, arguments);
    Profile profile = measure(package, selection);
    if (Interrupter::signal() != 0)
        throw Interrupted();
    profile.file = file;
    profile.engine = loadedEngineText();
    return printOut(arguments.has("--json") ? QJsonDocument(profileJson(profile)).toJson()
                                            : profileText(profile).toUtf8());
}

} // namespace

const Command profileCommand{"profile", "FILE",
                             "Tells what a package's outputs wait for: time and memory of each node and of "
                             "each output, the dearest first.",
                             joined({selectionOptions(),
                                     {{"--json", nullptr, nullptr, "for machines, on standard output"}},
                                     engineOptions()}),
                             runProfile};

} // namespace vellor::tool
