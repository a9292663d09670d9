#include "orncommon/core/applicationsettings.h"
#include "resources/resources.h"

#include <QApplication>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    // Settings of this run go to a folder of its own.
    const QTemporaryDir home;
    qputenv("HOME", QFile::encodeName(home.path()));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path()));
    Orn::Resources::initResources();
    const QApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("VellorTests"));
    QCoreApplication::setApplicationName(QStringLiteral("orngui"));
    QCoreApplication::setApplicationVersion(QStringLiteral("1"));
    ::testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    Orn::Core::ApplicationSettings::getInstance().destroy();
    return result;
}
