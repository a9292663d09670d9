#include "applications/player/session/static.h"
#include "applications/player/session/cookingaliases.h"
#include "applications/player/session/sessionsettings.h"
#include "common/engine/tests/testinstallation.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace Zph::Applications::Player;
using Zph::Engine::Tests::TestInstallation;

namespace {

class StaticServices : public testing::Test
{
protected:
    StaticServices() { Static::instance().presetsPath.clear(); }

    QString pathOf(const QString& name, CookingAliases& aliases, const CookingAliases::AskForStudio& ask = {})
    {
        for (const CookingAlias& alias : aliases.get(ask)) {
            if (alias.name == name)
                return alias.path;
        }
        return QStringLiteral("-");
    }

    TestInstallation folder;
};

} // namespace

TEST_F(StaticServices, RecentFilesAreTenTheLatestFirst)
{
    Static& services = Static::instance();
    for (int i = 0; i < 12; ++i)
        services.rememberFile(QString("/pack/%1.vlrar").arg(i));
    services.rememberFile("/pack/5.vlrar");
    const QStringList files = services.recentFiles();
    ASSERT_EQ(files.size(), 10);
    EXPECT_EQ(files.mid(0, 3), QStringList({"/pack/5.vlrar", "/pack/11.vlrar", "/pack/10.vlrar"}));
    EXPECT_EQ(files.count("/pack/5.vlrar"), 1);
    EXPECT_EQ(services.currentFile, "/pack/5.vlrar");
    EXPECT_EQ(SessionSettings::openFilePath.read(), "/pack");
    services.rememberFile("/pack/what?.vlrar");
    EXPECT_EQ(services.recentFiles().mid(0, 2), QStringList({"/pack/what", ".vlrar"}));
}

TEST_F(StaticServices, WhatTheCommandLineNamesMustExist)
{
    Static& services = Static::instance();
    services.inputFiles.clear();
    QFile file(folder.path("a.vlr"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    CommandLine arguments;
    arguments.developerMode = true;
    arguments.presetsPath = folder.path("none");
    arguments.inputFiles = QStringList{folder.path("none.vlr"), folder.path("plugins/../a.vlr")};
    services.readCommandLine(arguments);
    EXPECT_TRUE(services.developerMode);
    EXPECT_EQ(services.presetsPath, "");
    EXPECT_EQ(services.inputFiles, QStringList({folder.path("a.vlr")}));
    arguments.presetsPath = folder.path();
    services.readCommandLine(arguments);
    EXPECT_EQ(services.presetsPath, folder.path());
}

TEST_F(StaticServices, AliasesComeFromTheCommandLineFirst)
{
    CookingAliases aliases;
    Static::instance().presetsPath = folder.path();
    TestInstallation::settings()->setValue("preferences/resources/urlAliases/size", 1);
    TestInstallation::settings()->setValue("preferences/resources/urlAliases/1/name", "mine");
    TestInstallation::settings()->setValue("preferences/resources/urlAliases/1/path", "/mine");
    EXPECT_EQ(pathOf("vlr", aliases), folder.path());
    EXPECT_EQ(pathOf("mine", aliases), "-");
    EXPECT_NE(pathOf("vs-3dview-shaders", aliases), "-");

    Static::instance().presetsPath.clear();
    EXPECT_EQ(pathOf("vlr", aliases), folder.path()); // kept
    aliases.forget();
    EXPECT_EQ(pathOf("mine", aliases), "/mine");
    EXPECT_EQ(pathOf("vlr", aliases), "-");
    for (const char* name : {"vs-3dview-shaders", "vs-3dview-shapes", "vs-3dview-maps"})
        EXPECT_NE(pathOf(name, aliases), "-") << name;
}

TEST_F(StaticServices, TheUserIsAskedOnceForTheStudioAndAGoodAnswerIsKept)
{
    CookingAliases aliases;
    int asked = 0;
    const auto nowhere = [&] { return ++asked, QString(); };
    EXPECT_EQ(pathOf("vlr", aliases, nowhere), "-");
    EXPECT_EQ(pathOf("vlr", aliases, nowhere), "-");
    EXPECT_EQ(asked, 1);

    aliases.forget();
    EXPECT_EQ(pathOf("vlr", aliases, [&] { return folder.path("plugins"); }), "-"); // holds no packages
    EXPECT_EQ(SessionSettings::studioPath.read(), "");

    aliases.forget();
    QDir(folder.path()).mkpath("studio/resources/packages");
    EXPECT_EQ(pathOf("vlr", aliases, [&] { return folder.path("studio"); }),
              folder.path("studio/resources/packages"));
    aliases.forget();
    EXPECT_EQ(pathOf("vlr", aliases, nowhere), folder.path("studio/resources/packages"));
    EXPECT_EQ(asked, 1);
}
