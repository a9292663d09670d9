#include "applications/player/session/programidentity.h"
#include "applications/player/shell/startup.h"
#include "resources/resources.h"

#include <QApplication>
#include <QStandardPaths>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    using namespace Zph::Applications::Player;
    QStandardPaths::setTestModeEnabled(true);
    Orn::Resources::initResources();
    Startup::setApplicationAttributes();
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    setProgramIdentity();
    Startup::registerCodecs();
    Startup::registerImageServers();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
