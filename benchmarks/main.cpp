// Runs what the other files register, in the program's own surroundings: its theme, fonts and codecs, the CPU
// engine, and settings that are nobody's.

#include "applications/player/session/programidentity.h"
#include "applications/player/shell/startup.h"
#include "common/engine/backend.h"
#include "common/engine/engineswitcher.h"
#include "orncommon/core/applicationsettings.h"
#include "orncommon/core/componentsmgr.h"
#include "resources/resources.h"

#include <vellor/linker.h>

#include <QApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace Zph::Applications::Player;

int main(int argc, char** argv)
{
    const QTemporaryDir home;
    for (const char* place : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        qputenv(place, QFile::encodeName(home.path()));
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    benchmark::Initialize(&argc, argv);
    Orn::Resources::initResources();
    Startup::setApplicationAttributes();
    {
        const QApplication application(argc, argv);
        setProgramIdentity();
        Startup::registerFonts();
        Startup::registerCodecs();
        Startup::loadTheme();
        Zph::Engine::Switcher::setLinkerEnginesList(&vellorLinkerGetEnginesList);
        if (!Zph::Engine::load(BENCHMARK_ENGINE))
            qFatal("There is no engine at '%s'", BENCHMARK_ENGINE);
        benchmark::RunSpecifiedBenchmarks();
        Orn::Core::ApplicationSettings::getInstance().destroy();
        Orn::Core::ComponentsMgr::getInstance().clear();
    }
    Zph::Engine::unload();
    benchmark::Shutdown();
}
