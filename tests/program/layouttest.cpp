// What survives a restart of the window, and what does not.

#include "applications/player/shell/mainactions.h"
#include "applications/player/views/picturelabel.h"
#include "tests/program/programfixture.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDockWidget>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QScrollArea>

namespace Zph::Applications::Player::Tests {

namespace {

using Zph::Engine::Tests::TestInstallation;

class Layout : public ProgramFixture
{
protected:
    QDockWidget* dock(const char* name) const { return window->findChild<QDockWidget*>(name); }
};

TEST_F(Layout, TheFourAreasHaveTheirNames)
{
    openWindow();
    for (const char* name : {"area2DView_0", "areaTimeLine_0", "areaParameters_0", "area3DView_0"}) {
        ASSERT_NE(dock(name), nullptr) << name;
        EXPECT_EQ(dock(name)->allowedAreas(), Qt::TopDockWidgetArea) << name;
    }
    EXPECT_TRUE(TestInstallation::settings()->contains("session/mainWindow/defaultlayout"));
}

TEST_F(Layout, GeometryAndDocksComeBack)
{
    openWindow();
    window->showNormal();
    dock("areaParameters_0")->hide();
    dock("area3DView_0")->show();
    QApplication::processEvents();
    window->resize(600, 500);
    window->move(40, 30);
    QApplication::processEvents();
    const QRect geometry = window->geometry();
    const int width = dock("area2DView_0")->width();
    closeWindow();

    openWindow();
    QApplication::processEvents();
    EXPECT_EQ(window->geometry(), geometry);
    EXPECT_TRUE(dock("areaParameters_0")->isHidden());
    EXPECT_FALSE(dock("area3DView_0")->isHidden());
    EXPECT_NEAR(dock("area2DView_0")->width(), width, 2);
    action("Reset Layout")->trigger();
    EXPECT_FALSE(dock("areaParameters_0")->isHidden());
    EXPECT_TRUE(dock("area3DView_0")->isHidden());
}

TEST_F(Layout, StoredGeometryThatCannotBe)
{
    const QRect screen = QApplication::primaryScreen()->availableGeometry();
    TestInstallation::settings()->setValue("session/mainWindow/state", int(Qt::WindowMinimized));
    TestInstallation::settings()->setValue("session/mainWindow/position", QPoint(90000, -90000));
    TestInstallation::settings()->setValue("session/mainWindow/size", QSize(90000, 50));
    TestInstallation::settings()->setValue("session/mainWindow/layout", QByteArray("no layout"));
    openWindow();
    EXPECT_TRUE(window->isMaximized()) << "nobody finds a window that begins minimised";
    EXPECT_TRUE(screen.intersects(window->geometry()));
    EXPECT_FALSE(dock("areaParameters_0")->isHidden());
}

TEST_F(Layout, WhatAViewShowsFollowsItsSize)
{
    openWindow();
    window->showNormal();
    const auto& label = *views().first()->findChild<PictureLabel*>();
    const auto& area = *views().first()->findChild<QScrollArea*>();
    auto* zoom = views().first()->findChild<QComboBox*>("zoom");
    ASSERT_NE(zoom, nullptr);
    for (const bool hasPicture : {false, true}) {
        if (hasPicture) {
            ASSERT_TRUE(window->loadFile(putPackage("walls", "vlrar")));
            zoom->setCurrentText("Fit.");
            emit zoom->activated(zoom->findText("Fit."));
        }
        for (const QSize size : {QSize(780, 400), QSize(790, 600), QSize(770, 300)}) {
            window->resize(size);
            QApplication::processEvents();
            const int side = std::min(area.viewport()->width(), area.viewport()->height()) - 6;
            EXPECT_EQ(label.size(), hasPicture ? QSize(side, side) : area.viewport()->size()) << hasPicture;
        }
    }
}

TEST_F(Layout, EveryActionIsReachableAndNoShortcutServesTwo)
{
    openWindow();
    QMap<QString, QString> owners;
    const std::function<void(const QList<QAction*>&)> walk = [&](const QList<QAction*>& actions) {
        for (const QAction* action : actions) {
            if (action->menu())
                walk(action->menu()->actions());
            for (const QKeySequence& shortcut : action->shortcuts()) {
                const QString key = shortcut.toString();
                EXPECT_TRUE(!owners.contains(key) || owners.value(key) == action->text())
                    << key.toStdString();
                owners[key] = action->text();
            }
        }
    };
    walk(window->menuBar()->actions());
    EXPECT_EQ(owners.value("Ctrl+O").toStdString(), "Open...");
    EXPECT_EQ(owners.value("F5").toStdString(), "Reload");
    EXPECT_EQ(owners.value("Ctrl+F5").toStdString(), "Auto-reload");
    EXPECT_EQ(owners.value("F9").toStdString(), "&Switch engine...");
    EXPECT_EQ(owners.value("F10").toStdString(), "Export as Bitmap...");
    EXPECT_EQ(owners.value("Ctrl+F10").toStdString(), "Re-Export (w/ previous settings)");
    EXPECT_EQ(owners.value("F1").toStdString(), "Online Documentation...");
}

} // namespace

} // namespace Zph::Applications::Player::Tests
