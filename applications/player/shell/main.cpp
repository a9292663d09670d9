// The entry of the player: brings everything up in a fixed order, opens the first document, runs the event
// loop and takes everything down. All of it on the main thread.

#include "applications/player/session/programidentity.h"
#include "applications/player/session/static.h"
#include "applications/player/shell/cmdlineargs.h"
#include "applications/player/shell/enginedynswitch.h"
#include "applications/player/shell/mainwindow.h"
#include "applications/player/shell/startup.h"
#include "common/engine/engineswitcher.h"
#include "orncommon/core/applicationsettings.h"
#include "orncommon/core/componentsmgr.h"
#include "orncommon/gui/applicationeventfilterproxy.h"
#include "resources/resources.h"

#include <vellor/linker.h>

#include <QApplication>
#include <QMessageBox>

#include <cstdio>
#include <memory>

// Q_INIT_RESOURCE declares a function of the global namespace, so it stands outside of any other.
static void initResources()
{
    Orn::Resources::initResources();
    Q_INIT_RESOURCE(stockpack);
}

namespace {

using namespace Zph::Applications::Player;

constexpr int kNoEngine = 500;

/// Help and version go to standard output. True when one was asked for.
bool printWhatWasAsked(const CmdLineArgs& arguments)
{
    if (arguments.isHelpSet())
        std::fputs(arguments.helpText().constData(), stdout);
    else if (arguments.isVersionSet())
        std::printf("Vellor Player %s\n", Startup::kVersionLine);
    else
        return false;
    return true;
}

void readCommandLine(const CmdLineArgs& arguments)
{
    Static::instance().readCommandLine({arguments.isDeveloperSet(), arguments.isAutoReloadSet(),
                                        arguments.presetsPath(), arguments.inputFiles()});
}

void openFirstDocument(MainWindow& window)
{
    QStringList& files = Static::instance().inputFiles;
    if (files.isEmpty() && !Static::instance().stockPackageFiles().isEmpty())
        files << Static::instance().stockPackageFiles().first();
    if (!files.isEmpty())
        window.loadFile(files.first());
}

/// Help and version are for scripts too: where there is no display, they make do with a platform that draws
/// nowhere.
void allowMissingDisplay(int argc, char** argv)
{
    for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (qEnvironmentVariableIsSet(variable))
            return;
    QStringList texts;
    for (int i = 0; i < argc; ++i)
        texts << QString::fromLocal8Bit(argv[i]);
    CmdLineArgs arguments;
    arguments.parse(texts);
    if (arguments.isHelpSet() || arguments.isVersionSet())
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

} // namespace

int main(int argc, char** argv)
{
    initResources();
    Startup::setApplicationAttributes();
    allowMissingDisplay(argc, argv);
    auto application = std::make_unique<QApplication>(argc, argv);
    setProgramIdentity();
    Startup::startLogging();
    Static::instance();
    auto arguments = std::make_unique<CmdLineArgs>();
    arguments->parse(QCoreApplication::arguments());
    if (printWhatWasAsked(*arguments)) {
        Orn::Core::ApplicationSettings::getInstance().destroy();
        application.reset();
        return 0;
    }
    readCommandLine(*arguments);
    Startup::registerFonts();
    Startup::registerCodecs();
    Startup::loadTheme();
    Startup::registerImageServers();
    auto colorEngine = Startup::makeColorEngine();
    auto window = std::make_unique<MainWindow>(colorEngine);
    Orn::Gui::ApplicationEventFilterProxy eventFilter(application.get());
    QObject::connect(&eventFilter, &Orn::Gui::ApplicationEventFilterProxy::fileOpenRequested, window.get(),
                     &MainWindow::loadFile);
    Startup::logEnvironment();
    window->show();
    Zph::Engine::Switcher::setLinkerEnginesList(&vellorLinkerGetEnginesList);
    auto engineSwitch = std::make_unique<EngineDynSwitch>(window.get());

    if (Zph::Engine::Switcher::current().isEmpty()) {
        QMessageBox::critical(window.get(), QObject::tr("Error"),
                              QObject::tr("No valid Rendering engine selected."), QMessageBox::Ok);
        window.reset();
        Orn::Core::ApplicationSettings::getInstance().destroy();
        application.reset();
        engineSwitch.reset();
        return kNoEngine;
    }
    openFirstDocument(*window);
    QApplication::exec();

    window.reset();
    Orn::Core::ApplicationSettings::getInstance().destroy();
    Orn::Core::ComponentsMgr::getInstance().clear();
    application.reset();
    engineSwitch.reset();
    return 0;
}
