#include "orncommon/core/applicationversion.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QSettings>
#include <QTemporaryDir>

// Everything that the code under test writes goes below one temporary folder: the user's own settings,
// documents and temporary files are out of reach.
int main(int argc, char** argv)
{
    const QTemporaryDir home;
    for (const char* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "TMPDIR"})
        qputenv(variable, home.path().toLocal8Bit());
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, home.path());
    QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Org"));
    QCoreApplication::setApplicationName(QStringLiteral("App"));
    Orn::Core::ApplicationVersion::getCurrent().setVersionNumber(10, 1, 1, 3475, QStringLiteral("e94872d4"));
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
