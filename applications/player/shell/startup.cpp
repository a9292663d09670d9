#include "startup.h"

#include "applications/player/images/widgets/imageserverfactories.h"
#include "orncommon/colormanagement/colormanagementloggeradaptor.h"
#include "orncommon/colormanagement/legacycolormanagementengine.h"
#include "orncommon/core/applicationsettings.h"
#include "orncommon/core/channellogger.h"
#include "orncommon/core/componentsmgr.h"
#include "orncommon/core/logmanager.h"
#include "orncommon/core/logtofiledelegate.h"
#include "orncommon/gui/thememanager.h"
#include "orncommon/image/codec/defaultcodecs.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QFontDatabase>
#include <QIcon>
#include <QStandardPaths>
#include <QSurfaceFormat>

namespace Zph::Applications::Player::Startup {

namespace {

const Orn::Core::Log::ChannelLogger environmentLogger("Environment");
const Orn::Core::Log::ChannelLogger colourLogger("ColorManagement");

} // namespace

const char* const kVersionLine = "10.1.1+3475.linux.x64.standard.e94872d4659deddffe9a267b2a795952c99a510d";

void setApplicationAttributes()
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QSurfaceFormat format;
    format.setProfile(QSurfaceFormat::CoreProfile);
    format.setVersion(4, 5);
    format.setSamples(0);
    format.setSwapBehavior(QSurfaceFormat::DoubleBuffer);
    format.setSwapInterval(0);
    format.setStencilBufferSize(0);
    format.setDepthBufferSize(0);
    QSurfaceFormat::setDefaultFormat(format);
}

void startLogging()
{
    auto& manager = Orn::Core::Log::LogManager::instance();
    manager.installQtMsgHandler();
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    QDir::root().mkpath(folder);
    const QString path = QDir(folder).filePath("log_player.txt");
    environmentLogger.info("Log file location: " + path);
    manager.addDelegate(QSharedPointer<Orn::Core::Log::LogToFileDelegate>::create(path));
}

void registerFonts()
{
    QDirIterator fonts(":/zph/editor/gui/fonts");
    while (fonts.hasNext())
        QFontDatabase::addApplicationFont(fonts.next());
}

void registerCodecs()
{
    Orn::Image::Codec::registerDefaultCodecs(Orn::Image::Codec::SurfaceCodecManager::instance());
}

void loadTheme()
{
    auto theme = QSharedPointer<Orn::Gui::ThemeManager>::create();
    Orn::Core::ComponentsMgr::getInstance().add(theme);
    QApplication::setWindowIcon(QIcon(":/zph/applications/player/images/appicon.svg"));
    Orn::Gui::setUpTheme(*theme, Orn::Core::ApplicationSettings::getInstance().getApplicationResourceDir());
}

void registerImageServers()
{
    registerDefaultImageServerFactories();
}

std::shared_ptr<Orn::ColorManagement::ColorManagementEngine> makeColorEngine()
{
    using namespace Orn::ColorManagement;
    auto engine = std::make_shared<LegacyColorManagementEngine>(
        std::make_shared<ColorManagementLoggerAdaptor>(colourLogger));
    engine->init();
    return engine;
}

void logEnvironment()
{
    const auto& application = Orn::Core::ApplicationSettings::getInstance();
    environmentLogger.info(
        QStringLiteral("ApplicationInstallDir: %1").arg(application.getApplicationInstallDir()));
    environmentLogger.info(QStringLiteral("UserDataDir: %1").arg(application.getApplicationDataDir()));
    Orn::Core::logSettings(*application.getSettingsSessions(), environmentLogger);
}

} // namespace Zph::Applications::Player::Startup
