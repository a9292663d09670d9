// What takes the program itself: its command line, its exit codes, and what it leaves behind for the next
// start.

#include "tests/program/packagefiles.h"
#include "tests/program/playerprocess.h"

#include <QDir>
#include <QFileInfo>
#include <QPoint>
#include <QSettings>
#include <QSize>

#include <gtest/gtest.h>

#include <filesystem>

namespace Zph::Applications::Player::Tests {

namespace {

const QString walls = QStringLiteral(VELLOR_TEST_PACKAGES "/walls.vlr");
const QString floorFile = QStringLiteral(VELLOR_TEST_PACKAGES "/floor.vlr");

TEST(PlayerProcess, HelpAndVersionGoToStandardOutput)
{
    struct Row
    {
        const char* option;
        const char* text;
    };
    const Row rows[] = {{"--help", "--presets-path"},
                        {"-h", "Enable developer mode."},
                        {"--version", "Vellor Player 10.1.1+3475.linux.x64.standard."},
                        {"-v", "Vellor Player 10.1.1+3475.linux.x64.standard."}};
    for (const Row& row : rows) {
        PlayerProcess player;
        EXPECT_EQ(player.run({row.option, walls}), 0) << row.option;
        EXPECT_TRUE(player.output().contains(row.text)) << row.option;
        EXPECT_TRUE(QFileInfo::exists(player.logFile())) << row.option << " leaves a log";
        EXPECT_FALSE(readFile(player.settingsFile()).contains("mainWindow"))
            << row.option << " makes no window";
    }
}

TEST(PlayerProcess, OpensTheFirstOfTheFilesThatExist)
{
    PlayerProcess player;
    ASSERT_TRUE(player.start(
        {"--no-such-option", "/missing/file.vlr", walls, floorFile, "--presets-path", "/missing"}));
    EXPECT_TRUE(player.waitFor("title", "Vellor Player - walls.vlr")) << player.ask("title").toStdString();
    EXPECT_TRUE(player.waitFor("status", "Load Done."));
    EXPECT_EQ(player.ask("windows").toStdString(), "1");
    player.ask("close");
    EXPECT_EQ(player.exitCode(), 0);
}

TEST(PlayerProcess, WithNoFileItShowsAStockPackageIfItHasOne)
{
    const bool hasStock =
        !QDir(QStringLiteral(VELLOR_TEST_BINARIES "/data")).entryList({"*.vlrar"}).isEmpty();
    PlayerProcess player;
    ASSERT_TRUE(player.start({"/missing/file.vlr"}));
    EXPECT_TRUE(player.waitFor("status", hasStock ? "Load Done." : ""));
    EXPECT_EQ(player.ask("title").contains(".vlrar"), hasStock);
    player.ask("close");
    EXPECT_EQ(player.exitCode(), 0);
}

TEST(PlayerProcess, WithoutAnEngineItSaysSoAndEnds)
{
    namespace fs = std::filesystem;
    QTemporaryDir folder;
    const fs::path from = VELLOR_TEST_BINARIES, to = folder.path().toStdString();
    fs::copy(from / "vellor-player", to / "vellor-player");
    fs::copy(from / "lib", to / "lib");
    PlayerProcess player(folder.filePath("vellor-player"));
    player.setWorkingDirectory(folder.path()); // which is where engines are looked for then
    ASSERT_TRUE(player.start({walls}));
    EXPECT_TRUE(player.waitFor("modal", "Select Vellor Engine...|"));
    player.ask("reject");
    EXPECT_TRUE(player.waitFor("modal", "Error|No valid Rendering engine selected."));
    player.ask("accept");
    EXPECT_EQ(player.exitCode(), 500 & 255);
}

TEST(PlayerProcess, SettingsOfAnotherVersionAreForgotten)
{
    PlayerProcess player;
    ASSERT_TRUE(QDir().mkpath(QFileInfo(player.settingsFile()).path()));
    for (const char* stored : {"9.0.0", "10.1.1"}) {
        {
            QSettings settings(player.settingsFile(), QSettings::IniFormat);
            settings.setValue("version", stored);
            settings.setValue("session/openFileMRU", "/somewhere/a.vlr");
            settings.setValue("session/sizeLimit", 9);
        }
        EXPECT_EQ(player.run({"--version"}), 0);
        const QSettings settings(player.settingsFile(), QSettings::IniFormat);
        EXPECT_EQ(settings.value("version").toString().toStdString(), "10.1.1");
        EXPECT_EQ(settings.contains("session/openFileMRU"), QString(stored) == "10.1.1") << stored;
        EXPECT_EQ(settings.contains("session/sizeLimit"), QString(stored) == "10.1.1") << stored;
    }
}

TEST(PlayerProcess, ComesBackAsItWasLeft)
{
    PlayerProcess player;
    ASSERT_TRUE(QDir().mkpath(QFileInfo(player.settingsFile()).path()));
    {
        QSettings settings(player.settingsFile(), QSettings::IniFormat);
        settings.setValue("version", "10.1.1");
        settings.setValue("session/mainWindow/state", 0);
        settings.setValue("session/mainWindow/size", QSize(900, 600));
        settings.setValue("session/mainWindow/position", QPoint(20, 20));
    }
    QSize size;
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(player.start({walls})) << round;
        ASSERT_TRUE(player.waitFor("status", "Load Done.")) << round;
        if (round == 0) {
            EXPECT_EQ(player.ask("geometry").toStdString(), "20 20 900 600");
        }
        player.ask("close");
        EXPECT_EQ(player.exitCode(), 0) << round;
        const QSettings settings(player.settingsFile(), QSettings::IniFormat);
        if (round == 0) // the window manager adds its frame
            size = settings.value("session/mainWindow/size").toSize();
        EXPECT_EQ(settings.value("session/mainWindow/size").toSize(), size) << round;
        EXPECT_EQ(settings.value("session/mainWindow/position").toPoint(), QPoint(20, 20)) << round;
        EXPECT_FALSE(settings.value("session/mainWindow/layout").toByteArray().isEmpty()) << round;
    }
}

} // namespace

} // namespace Zph::Applications::Player::Tests
