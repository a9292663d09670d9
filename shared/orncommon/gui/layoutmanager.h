#pragma once

#include "orncommon/gui/layoutwidget.h"

#include <QIcon>
#include <QList>
#include <QObject>
#include <QPair>
#include <QPointer>
#include <QTimer>

#include <memory>

class QMainWindow;
class QMenu;
class QTabBar;

namespace Orn::Gui {

class DockWidget;

/// The panels of a main window, grouped into named areas.
///
/// An area is a place in the window and holds docks as tabs. All docks lie in the one top dock area of
/// QMainWindow; splits and tabs make the structure. The n-th dock of an area has the object name AREA_n,
/// from 0, on which QMainWindow::saveState and restoreState depend. GUI thread.
class LayoutManager : public QObject
{
    Q_OBJECT

public:
    /// Says which widgets belong into an area.
    class IAreaRule
    {
    public:
        virtual ~IAreaRule() = default;
        virtual bool accepts(const LayoutWidget& widget) const = 0;
    };

    template<class T> class AreaTypeRule : public IAreaRule
    {
    public:
        bool accepts(const LayoutWidget& widget) const override
        {
            return dynamic_cast<const T*>(&widget) != nullptr;
        }
    };

    /// The window owns the manager.
    explicit LayoutManager(QMainWindow* window);
    ~LayoutManager() override;

    /// Creates an area and returns its index. Its first dock will lie beside (Qt::Horizontal) or below
    /// (Qt::Vertical) the parent area, where -1 is the last area made. `stretch` is its share of the free
    /// room; with 0 it takes `extent` pixels along `placement`, or what its contents ask for if that is 0.
    int addArea(int parentArea, Qt::Orientation placement, const QString& objectName, const QString& title,
                const QIcon& icon, int stretch, int extent);

    /// Puts the widget into a dock of the area, which takes it over. Null if there is no such area.
    DockWidget* addWidgetToArea(LayoutWidget* widget, int area);

    void addRule(const std::shared_ptr<IAreaRule>& rule, int area);
    /// Puts the widget into the area of the first rule that fits; if none does, into a new area beside the
    /// last.
    DockWidget* addWidget(LayoutWidget* widget);

    /// Adds one checkable entry for each dock with something inside.
    void fillMenu(QMenu* menu) const;

    /// Shares the window's room among the areas as addArea said. For the default layout, once the window has
    /// its size.
    void applyAreaSizes();

    int areaCount() const { return m_areas.size(); }
    QList<DockWidget*> docks(int area) const;
    QList<DockWidget*> docks() const;

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Area
    {
        QList<DockWidget*> docks;
        QString objectName;
        QString title;
        QIcon icon;
        int parent = -1;
        Qt::Orientation placement = Qt::Horizontal;
        int stretch = 1;
        int extent = 0;
    };

    bool hasArea(int area) const { return area >= 0 && area < m_areas.size(); }
    DockWidget* createDock(int area);
    void placeDock(int area, DockWidget* dock);
    DockWidget* anchorOf(int area) const;
    QString freeDockName(const Area& area) const;
    QString menuText(const Area& area, const DockWidget& dock) const;
    void watchDock(DockWidget* dock);
    void forgetDock(QObject* dock);
    void destroyInvalidDocks();
    void updateFloatingState(DockWidget* dock, bool floating);
    void scheduleTabUpdate();
    void updateTabs();
    void updateTabBar(QTabBar* bar);
    DockWidget* dockOfTab(const QTabBar& bar, int tab) const;

    QList<Area> m_areas;
    QMainWindow* m_window;
    QList<QPair<std::shared_ptr<IAreaRule>, int>> m_rules;
    QList<DockWidget*> m_trackedDocks; ///< those whose floating state is watched
    QTimer m_tabUpdateTimer;
    QList<QPointer<QTabBar>> m_tabBars;
};

} // namespace Orn::Gui
