#include "applications/player/shell/cmdlineargs.h"
#include "applications/player/shell/errorconsole.h"
#include "applications/player/shell/filekinds.h"
#include "applications/player/shell/mainactions.h"
#include "applications/player/shell/windowgeometry.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

using namespace Zph::Applications::Player;

namespace {

TEST(CmdLineArgs, TakesWhatItKnowsAndIgnoresTheRest)
{
    CmdLineArgs arguments;
    arguments.parse({"player", "-dev", "--auto-reload", "first.vlr", "--input", "second.vlr", "--unknown",
                     "--presets-path=presets", "third.vlr"});
    EXPECT_TRUE(arguments.isDeveloperSet());
    EXPECT_TRUE(arguments.isAutoReloadSet());
    EXPECT_FALSE(arguments.isHelpSet());
    EXPECT_FALSE(arguments.isVersionSet());
    EXPECT_EQ(arguments.presetsPath().toStdString(), "presets");
    EXPECT_EQ(arguments.inputFiles(), QStringList({"first.vlr", "third.vlr", "second.vlr"}));
}

TEST(CmdLineArgs, HelpNamesEveryOption)
{
    CmdLineArgs arguments;
    arguments.parse({"player", "-h"});
    EXPECT_TRUE(arguments.isHelpSet());
    for (const char* option : {"--help", "input", "dev", "auto-reload", "--version", "--presets-path"})
        EXPECT_TRUE(arguments.helpText().contains(option)) << option;
}

TEST(WindowGeometry, ComesBackOntoTheScreens)
{
    const QRect area(0, 0, 1920, 1080);
    struct Row
    {
        QRect frame, expected;
    };
    const Row rows[] = {
        {{100, 100, 800, 600}, {100, 100, 800, 600}},   // as it was
        {{3000, 100, 800, 600}, {1120, 100, 800, 600}}, // its screen is gone
        {{-500, -300, 800, 600}, {10, 10, 800, 600}},   // above and left of everything
        {{0, 900, 800, 600}, {0, 480, 800, 600}},       // below
        {{0, 0, 4000, 3000}, {0, 0, 1920, 1080}},       // larger than everything
    };
    for (const Row& row : rows)
        EXPECT_EQ(WindowGeometry::clamped(row.frame, area), row.expected)
            << row.frame.x() << ' ' << row.frame.y();
}

TEST(FileKinds, BySuffixInAnyCase)
{
    EXPECT_EQ(fileKind("a/b.VLR"), FileKind::Authoring);
    EXPECT_EQ(fileKind("b.tar.vlrar"), FileKind::Archive);
    EXPECT_EQ(fileKind("b.vlrasm"), FileKind::Assembly);
    EXPECT_EQ(fileKind("b.vlrbin"), FileKind::Binary);
    EXPECT_EQ(fileKind("b.Xml"), FileKind::Xml);
    EXPECT_EQ(fileKind("b.png"), FileKind::Metadata);
    EXPECT_EQ(fileKind("b"), FileKind::Metadata);
}

TEST(ErrorConsole, ShowsItselfForMessagesAlone)
{
    ErrorConsole console(nullptr);
    console.stage("Cooking");
    EXPECT_TRUE(console.isHidden());
    console.message(2, "Broken");
    EXPECT_FALSE(console.isHidden());
    EXPECT_EQ(console.text().toStdString(), "Cooking\nBroken");
    console.clear();
    EXPECT_TRUE(console.text().isEmpty());
}

TEST(MainMenus, EveryEntryStandsInItsMenu)
{
    QMainWindow window;
    MainActions actions(&window);
    actions.setDynamicChoices(5);
    EXPECT_TRUE(actions.dynamicOutputSize->isChecked());
    EXPECT_FALSE(actions.dynamicPixelSize->isChecked());
    EXPECT_EQ(actions.dynamicChoices(), 5);

    const MainMenus menus(window, actions, {":/stock/red_bricks.vlrar"});
    QStringList titles;
    for (const QAction* menu : window.menuBar()->actions())
        titles << menu->text();
    EXPECT_EQ(titles, QStringList({"File", "Export", "Options", "Window", "Help"}));
    ASSERT_NE(menus.openMenu, nullptr);
    EXPECT_EQ(menus.openMenu->actions().last()->text().toStdString(), "Red bricks");
    EXPECT_EQ(menus.openMenu->actions().last()->data().toString().toStdString(), ":/stock/red_bricks.vlrar");
    EXPECT_EQ(actions.reload->shortcut(), QKeySequence(Qt::Key_F5));
    EXPECT_FALSE(actions.autoReload->isCheckable());

    QMainWindow bare;
    EXPECT_EQ(MainMenus(bare, actions, {}).openMenu, nullptr);
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
