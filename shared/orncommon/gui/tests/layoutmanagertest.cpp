#include "orncommon/gui/layoutmanager.h"
#include "orncommon/core/applicationsettings.h"
#include "orncommon/gui/docktabbutton.h"
#include "orncommon/gui/dockwidget.h"
#include "orncommon/gui/dockwidgettitlebar.h"

#include <QAction>
#include <QCoreApplication>
#include <QMainWindow>
#include <QMenu>
#include <QTabBar>

#include <gtest/gtest.h>

using namespace Orn::Gui;

namespace {

class OnePanel : public LayoutWidget
{
};
class OtherPanel : public LayoutWidget
{
};
class StrangePanel : public LayoutWidget
{
};

void settle()
{
    for (int i = 0; i < 10; ++i) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

/// A window with the four areas of the player, no panels yet.
struct Window
{
    QMainWindow window;
    LayoutManager layout{&window};

    Window()
    {
        window.setDockOptions(QMainWindow::AllowTabbedDocks);
        window.resize(1000, 800);
        add(-1, Qt::Horizontal, "area2DView", "2D View");
        add(0, Qt::Vertical, "areaTimeLine", "Timeline");
        add(0, Qt::Horizontal, "areaParameters", "Parameters");
        add(0, Qt::Vertical, "area3DView", "3D View");
    }

    void add(int parent, Qt::Orientation placement, const char* name, const char* title)
    {
        layout.addArea(parent, placement, name, title, QIcon(), 1, 0);
    }

    void fill()
    {
        for (int area = 0; area < 4; ++area)
            layout.addWidgetToArea(new LayoutWidget, area);
        window.show();
        settle();
    }

    QRect place(int area) const { return layout.docks(area).first()->geometry(); }
};

TEST(LayoutManager, ADockIsNamedAfterItsAreaAndItsNumber)
{
    Window w;
    w.fill();
    w.layout.addWidgetToArea(new LayoutWidget, 3);
    settle();
    const auto docks = w.layout.docks(3);
    ASSERT_EQ(docks.size(), 2);
    EXPECT_EQ(docks[0]->objectName(), "area3DView_0");
    EXPECT_EQ(docks[1]->objectName(), "area3DView_1");
    EXPECT_EQ(docks[0]->allowedAreas(), Qt::TopDockWidgetArea);
    EXPECT_TRUE(w.window.tabifiedDockWidgets(docks[0]).contains(docks[1]));
    EXPECT_EQ(docks[0]->windowTitle(), "3D View");
}

TEST(LayoutManager, AreasLieWhereTheirPlacementSays)
{
    Window w;
    w.fill();
    EXPECT_GT(w.place(1).top(), w.place(0).bottom()) << "timeline below the 2D view";
    EXPECT_GT(w.place(2).left(), w.place(0).right()) << "parameters right of the 2D view";
    EXPECT_GT(w.place(3).top(), w.place(0).bottom()) << "3D view below the 2D view";
    EXPECT_LT(w.place(3).top(), w.place(1).top()) << "and above the timeline";
    EXPECT_LT(w.place(3).right(), w.place(2).left()) << "and left of the parameters";
}

TEST(LayoutManager, RulesChooseTheAreaInOrderAndAStrangerGetsAnAreaOfItsOwn)
{
    Window w;
    w.layout.addRule(std::make_shared<LayoutManager::AreaTypeRule<OtherPanel>>(), 1);
    w.layout.addRule(std::make_shared<LayoutManager::AreaTypeRule<OnePanel>>(), 2);
    w.layout.addRule(std::make_shared<LayoutManager::AreaTypeRule<OnePanel>>(), 3);
    EXPECT_EQ(w.layout.addWidget(new OnePanel)->objectName(), "areaParameters_0");
    EXPECT_EQ(w.layout.addWidget(new OtherPanel)->objectName(), "areaTimeLine_0");
    auto* stranger = new StrangePanel;
    stranger->setObjectName("strange");
    EXPECT_EQ(w.layout.addWidget(stranger)->objectName(), "strange_0");
    EXPECT_EQ(w.layout.areaCount(), 5);
    EXPECT_EQ(w.layout.addWidgetToArea(nullptr, 0), nullptr);
    EXPECT_EQ(w.layout.addWidgetToArea(stranger, 9), nullptr);
}

TEST(LayoutManager, ARemovedPanelLeavesAPlaceThatTheNextOneTakes)
{
    Window w;
    w.fill();
    DockWidget* dock = w.layout.docks(3).first();
    delete dock->widget();
    EXPECT_TRUE(dock->isHidden());
    settle();
    ASSERT_EQ(w.layout.docks(3), QList<DockWidget*>{dock}) << "the only dock of an area stays";
    auto* panel = new LayoutWidget;
    panel->setWindowTitle("Again");
    EXPECT_EQ(w.layout.addWidgetToArea(panel, 3), dock);
    EXPECT_EQ(dock->windowTitle(), "Again");
    EXPECT_FALSE(dock->isHidden());
}

TEST(LayoutManager, AnEmptyDockBesideOthersGoesAndItsNameIsFreeAgain)
{
    Window w;
    w.fill();
    w.layout.addWidgetToArea(new LayoutWidget, 3);
    w.layout.addWidgetToArea(new LayoutWidget, 3);
    settle();
    delete w.layout.docks(3)[1]->widget();
    settle();
    ASSERT_EQ(w.layout.docks(3).size(), 2);
    EXPECT_EQ(w.layout.addWidgetToArea(new LayoutWidget, 3)->objectName(), "area3DView_1");
}

TEST(LayoutManager, AStateComesBackAndUnknownNamesInItAreIgnored)
{
    Window first;
    first.fill();
    first.layout.addWidgetToArea(new LayoutWidget, 3);
    settle();
    first.window.resizeDocks({first.layout.docks(0).first(), first.layout.docks(2).first()}, {300, 600},
                             Qt::Horizontal);
    first.layout.docks(1).first()->hide();
    settle();
    const QByteArray state = first.window.saveState();

    Window second; // without the second 3D view
    second.fill();
    ASSERT_TRUE(second.window.restoreState(state));
    settle();
    EXPECT_TRUE(second.layout.docks(1).first()->isHidden());
    EXPECT_EQ(second.place(2), first.place(2));
    EXPECT_EQ(second.layout.docks(3).size(), 1);
}

TEST(LayoutManager, ATabCarriesTheActionsOfItsOwnDockEvenWhereTitlesRepeat)
{
    Window w;
    w.fill();
    w.layout.addWidgetToArea(new LayoutWidget, 3);
    settle();
    QList<DockTabButton*> buttons = w.window.findChildren<DockTabButton*>("customTabButton");
    ASSERT_EQ(buttons.size(), 2);
    EXPECT_NE(buttons[0]->dock(), buttons[1]->dock());
    EXPECT_NE(buttons[0]->tabIsCurrent(), buttons[1]->tabIsCurrent());
    EXPECT_EQ(w.layout.docks(3).first()->titleBarWidget()->sizeHint().height(), 0)
        << "the tab stands for the title bar";

    delete w.layout.docks(3).last()->widget();
    settle();
    EXPECT_TRUE(w.window.findChildren<DockTabButton*>().isEmpty());
    EXPECT_GT(w.layout.docks(3).first()->titleBarWidget()->sizeHint().height(), 0);
}

TEST(LayoutManager, TheMenuNamesTheAreaOnlyWhereTitlesRepeatAcrossAreas)
{
    Window w;
    w.fill();
    auto* panel = new LayoutWidget;
    panel->setWindowTitle("2D View");
    w.layout.addWidgetToArea(panel, 3);
    QMenu menu;
    w.layout.fillMenu(&menu);
    QStringList texts;
    for (const QAction* action : menu.actions())
        texts << action->text();
    EXPECT_EQ(texts,
              QStringList({"2D View (2D View)", "Timeline", "Parameters", "3D View", "2D View (3D View)"}));
    menu.actions()[1]->trigger();
    EXPECT_TRUE(w.layout.docks(1).first()->isHidden());
}

TEST(LayoutManager, OnlyTheFirstDockOfAnAreaRemembersWhereItFloated)
{
    const auto settings = Orn::Core::ApplicationSettings::getInstance().getSettingsSessions();
    ASSERT_TRUE(settings);
    settings->remove("session/windows/floating_states");
    {
        Window w;
        w.fill();
        w.layout.addWidgetToArea(new LayoutWidget, 3);
        settle();
        for (DockWidget* dock : w.layout.docks(3)) {
            dock->setFloating(true);
            settle();
            dock->setGeometry(40, 50, 333, 222);
            settle();
            dock->setFloating(false);
            settle();
        }
    }
    EXPECT_EQ(settings->value("session/windows/floating_states/area3DView_0/pos").toPoint(), QPoint(40, 50));
    EXPECT_EQ(settings->value("session/windows/floating_states/area3DView_0/size").toSize(), QSize(333, 222));
    EXPECT_FALSE(settings->contains("session/windows/floating_states/area3DView_1/pos"));

    Window w;
    w.fill();
    DockWidget* dock = w.layout.docks(3).first();
    dock->setFloating(true);
    settle();
    EXPECT_EQ(dock->pos(), QPoint(40, 50));
    EXPECT_EQ(dock->size(), QSize(333, 222));
}

TEST(DockWidget, EachStateHasItsTitleBarAndTheTitleIsInUpperCase)
{
    Window w;
    w.fill();
    DockWidget* dock = w.layout.docks(2).first();
    const auto bar = [dock] { return qobject_cast<DockWidgetTitleBar*>(dock->titleBarWidget()); };
    DockWidgetTitleBar* docked = bar();
    ASSERT_TRUE(docked);
    dock->widget()->setWindowTitle("My panel");
    EXPECT_EQ(docked->title(), "MY PANEL");
    EXPECT_EQ(dock->floatAction()->text(), "Undock window");

    dock->floatAction()->trigger();
    settle();
    EXPECT_TRUE(dock->isFloating());
    EXPECT_NE(bar(), docked);
    EXPECT_EQ(bar()->title(), "MY PANEL");
    EXPECT_TRUE(bar()->isVisible());
    EXPECT_FALSE(docked->isVisible());
    EXPECT_EQ(dock->floatAction()->text(), "Dock window");
    EXPECT_FALSE(dock->windowFlags().testFlag(Qt::X11BypassWindowManagerHint));

    dock->floatAction()->trigger();
    settle();
    EXPECT_FALSE(dock->isFloating());
    EXPECT_EQ(bar(), docked);
}

} // namespace
