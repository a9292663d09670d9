// All docks lie in the top dock area, in a tree of splits that grows by splitting an existing dock; an area
// is a leaf of that tree, a group of tabs. QMainWindow makes and recycles the tab bars as it likes, without a
// word: the manager learns of them, and of docks, as polished children of the window, and dresses the tabs
// once control is back in the event loop.
//
// A dock that lost its panel is hidden at once and removed through the event loop, unless it was reused by
// then. The only dock of an area stays, hidden and empty, and holds the area's place in the tree.

#include "orncommon/gui/layoutmanager.h"

#include "orncommon/core/settingkey.h"
#include "orncommon/gui/docktabbutton.h"
#include "orncommon/gui/dockwidget.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMainWindow>
#include <QMenu>
#include <QPoint>
#include <QSize>
#include <QTabBar>

#include <algorithm>

namespace Orn::Gui {

namespace {

const Core::SettingKey<QPoint> floatingPosition{QStringLiteral("session/windows/floating_states/%1/pos"), {}};
const Core::SettingKey<QSize> floatingSize{QStringLiteral("session/windows/floating_states/%1/size"), {}};

/// What the widest area of a row gets for each pixel of another.
constexpr double mainAreaShare = 1.6;

class DestroyInvalidDockWidgets : public QEvent
{
public:
    DestroyInvalidDockWidgets() : QEvent(eventType()) {}

    static Type eventType()
    {
        static const auto type = static_cast<Type>(registerEventType());
        return type;
    }
};

} // namespace

LayoutManager::LayoutManager(QMainWindow* window) : QObject(window), m_window(window)
{
    window->installEventFilter(this);
    m_tabUpdateTimer.setSingleShot(true);
    m_tabUpdateTimer.setInterval(0);
    connect(&m_tabUpdateTimer, &QTimer::timeout, this, &LayoutManager::updateTabs);
}

LayoutManager::~LayoutManager() = default;

int LayoutManager::addArea(int parentArea, Qt::Orientation placement, const QString& objectName,
                           const QString& title, const QIcon& icon, int stretch, int extent)
{
    Area area;
    area.objectName = objectName;
    area.title = title;
    area.icon = icon;
    area.parent = hasArea(parentArea) ? parentArea : m_areas.size() - 1;
    area.placement = placement;
    area.stretch = stretch;
    area.extent = extent;
    m_areas.append(area);
    return m_areas.size() - 1;
}

DockWidget* LayoutManager::addWidgetToArea(LayoutWidget* widget, int area)
{
    if (!widget || !hasArea(area))
        return nullptr;
    const QList<DockWidget*>& docks = m_areas[area].docks;
    const bool reuse = !docks.isEmpty() && !docks.last()->widget();
    DockWidget* dock = reuse ? docks.last() : createDock(area);
    dock->setWindowTitle(m_areas[area].title);
    dock->setWindowIcon(m_areas[area].icon);
    dock->setContents(widget);
    if (reuse)
        dock->show();
    scheduleTabUpdate();
    return dock;
}

DockWidget* LayoutManager::createDock(int area)
{
    auto* dock = new DockWidget(m_areas[area].title, m_window);
    dock->setAllowedAreas(Qt::TopDockWidgetArea);
    dock->setObjectName(freeDockName(m_areas[area]));
    placeDock(area, dock);
    m_areas[area].docks.append(dock);
    watchDock(dock);
    return dock;
}

QString LayoutManager::freeDockName(const Area& area) const
{
    const auto name = [&area](int index) { return area.objectName + QStringLiteral("_%1").arg(index); };
    const auto isTaken = [&area](const QString& candidate) {
        return std::any_of(area.docks.begin(), area.docks.end(),
                           [&candidate](const DockWidget* dock) { return dock->objectName() == candidate; });
    };
    // The count is free unless a dock before the last was removed; then some lower number is.
    if (!isTaken(name(area.docks.size())))
        return name(area.docks.size());
    int index = 0;
    while (isTaken(name(index)))
        ++index;
    return name(index);
}

void LayoutManager::placeDock(int area, DockWidget* dock)
{
    const Area& target = m_areas[area];
    if (!target.docks.isEmpty()) {
        m_window->tabifyDockWidget(target.docks.first(), dock);
        return;
    }
    m_window->addDockWidget(Qt::TopDockWidgetArea, dock);
    if (DockWidget* anchor = anchorOf(area))
        m_window->splitDockWidget(anchor, dock, target.placement);
}

DockWidget* LayoutManager::anchorOf(int area) const
{
    for (int parent = m_areas[area].parent; hasArea(parent); parent = m_areas[parent].parent)
        if (!m_areas[parent].docks.isEmpty())
            return m_areas[parent].docks.first();
    return nullptr;
}

void LayoutManager::watchDock(DockWidget* dock)
{
    connect(dock, &DockWidget::contentsLost, this, [this, dock] {
        dock->hide();
        QCoreApplication::postEvent(this, new DestroyInvalidDockWidgets);
    });
    connect(dock, &QObject::destroyed, this, &LayoutManager::forgetDock);
    connect(dock, &QDockWidget::visibilityChanged, this, &LayoutManager::scheduleTabUpdate);
    connect(dock, &QDockWidget::dockLocationChanged, this, &LayoutManager::scheduleTabUpdate);
    connect(dock, &QDockWidget::topLevelChanged, this, &LayoutManager::scheduleTabUpdate);
    connect(dock, &QWidget::windowTitleChanged, this, &LayoutManager::scheduleTabUpdate);
    connect(dock, &QWidget::windowIconChanged, this, &LayoutManager::scheduleTabUpdate);
}

void LayoutManager::forgetDock(QObject* dock)
{
    // By address alone: the dock is down to its QObject.
    const auto isDock = [dock](const DockWidget* other) {
        return static_cast<const QObject*>(other) == dock;
    };
    for (Area& area : m_areas)
        area.docks.erase(std::remove_if(area.docks.begin(), area.docks.end(), isDock), area.docks.end());
    m_trackedDocks.erase(std::remove_if(m_trackedDocks.begin(), m_trackedDocks.end(), isDock),
                         m_trackedDocks.end());
}

void LayoutManager::destroyInvalidDocks()
{
    for (int area = 0; area < m_areas.size(); ++area) {
        const QList<DockWidget*> docks = m_areas[area].docks;
        for (DockWidget* dock : docks)
            if (!dock->widget() && m_areas[area].docks.size() > 1)
                delete dock;
    }
    scheduleTabUpdate();
}

void LayoutManager::addRule(const std::shared_ptr<IAreaRule>& rule, int area)
{
    m_rules.append({rule, area});
}

DockWidget* LayoutManager::addWidget(LayoutWidget* widget)
{
    if (!widget)
        return nullptr;
    for (const auto& [rule, area] : qAsConst(m_rules))
        if (rule->accepts(*widget))
            return addWidgetToArea(widget, area);
    const QString name =
        widget->objectName().isEmpty() ? QStringLiteral("area%1").arg(m_areas.size()) : widget->objectName();
    return addWidgetToArea(
        widget, addArea(-1, Qt::Horizontal, name, widget->windowTitle(), widget->windowIcon(), 1, 0));
}

void LayoutManager::fillMenu(QMenu* menu) const
{
    for (const Area& area : m_areas) {
        for (const DockWidget* dock : area.docks) {
            if (!dock->widget())
                continue;
            QAction* action = dock->toggleViewAction();
            action->setText(menuText(area, *dock));
            menu->addAction(action);
        }
    }
}

QString LayoutManager::menuText(const Area& area, const DockWidget& dock) const
{
    for (const Area& other : m_areas)
        for (const DockWidget* otherDock : other.docks)
            if (otherDock->windowTitle() == dock.windowTitle() && other.title != area.title)
                return dock.windowTitle() + QLatin1String(" (") + area.title + QLatin1Char(')');
    return dock.windowTitle();
}

void LayoutManager::applyAreaSizes()
{
    for (const Qt::Orientation orientation : {Qt::Horizontal, Qt::Vertical}) {
        const bool horizontal = orientation == Qt::Horizontal;
        const auto along = [horizontal](const QSize& size) {
            return horizontal ? size.width() : size.height();
        };
        QList<QDockWidget*> docks;
        QList<double> shares;
        QList<int> sizes;
        int room = along(m_window->size());
        double shareSum = 0;
        for (const Area& area : qAsConst(m_areas)) {
            const bool isFirst = area.parent < 0;
            if (area.docks.isEmpty() || (!isFirst && area.placement != orientation))
                continue;
            const int fixed = area.extent > 0 ? area.extent : along(area.docks.first()->sizeHint());
            const double share = horizontal && isFirst ? mainAreaShare * area.stretch : area.stretch;
            docks.append(area.docks.first());
            shares.append(share);
            sizes.append(area.stretch > 0 ? 0 : fixed);
            room -= sizes.last();
            shareSum += share;
        }
        for (int i = 0; i < docks.size(); ++i)
            if (shares[i] > 0)
                sizes[i] = qMax(1, static_cast<int>(room * shares[i] / shareSum));
        m_window->resizeDocks(docks, sizes, orientation);
    }
}

QList<DockWidget*> LayoutManager::docks(int area) const
{
    return hasArea(area) ? m_areas[area].docks : QList<DockWidget*>();
}

QList<DockWidget*> LayoutManager::docks() const
{
    QList<DockWidget*> all;
    for (const Area& area : m_areas)
        all += area.docks;
    return all;
}

bool LayoutManager::event(QEvent* event)
{
    if (event->type() == DestroyInvalidDockWidgets::eventType()) {
        destroyInvalidDocks();
        return true;
    }
    return QObject::event(event);
}

bool LayoutManager::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_window && event->type() == QEvent::ChildPolished) {
        QObject* child = static_cast<QChildEvent*>(event)->child();
        if (auto* bar = qobject_cast<QTabBar*>(child); bar && !m_tabBars.contains(bar)) {
            m_tabBars.append(bar);
            bar->installEventFilter(this);
            // Deferred: the signal also comes while the bar's tabs are being replaced.
            connect(bar, &QTabBar::currentChanged, this, &LayoutManager::scheduleTabUpdate);
            scheduleTabUpdate();
        } else if (auto* dock = qobject_cast<DockWidget*>(child); dock && !m_trackedDocks.contains(dock)) {
            m_trackedDocks.append(dock);
            connect(dock, &QDockWidget::topLevelChanged, this,
                    [this, dock](bool floating) { updateFloatingState(dock, floating); });
        }
    } else if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Show ||
               event->type() == QEvent::Resize) {
        scheduleTabUpdate();
    }
    return QObject::eventFilter(watched, event);
}

void LayoutManager::updateFloatingState(DockWidget* dock, bool floating)
{
    const QString name = dock->objectName();
    if (!name.endsWith(QLatin1String("_0")))
        return;
    const auto position = floatingPosition.arg(name);
    const auto size = floatingSize.arg(name);
    if (floating && position.isStored() && size.isStored()) {
        dock->move(position.read());
        dock->resize(size.read());
    }
    const QRect geometry = dock->floatingGeometry();
    if (geometry.isValid()) {
        position.write(geometry.topLeft());
        size.write(geometry.size());
    }
}

void LayoutManager::scheduleTabUpdate()
{
    m_tabUpdateTimer.start();
}

void LayoutManager::updateTabs()
{
    m_tabBars.removeAll(nullptr);
    QList<DockWidget*> tabbed;
    for (QTabBar* bar : qAsConst(m_tabBars)) {
        updateTabBar(bar);
        if (bar->isHidden() || bar->count() < 2)
            continue;
        for (int tab = 0; tab < bar->count(); ++tab)
            if (DockWidget* dock = dockOfTab(*bar, tab))
                tabbed.append(dock);
    }
    for (DockWidget* dock : docks())
        dock->setTabbed(tabbed.contains(dock));
}

void LayoutManager::updateTabBar(QTabBar* bar)
{
    QList<QWidget*> wanted;
    for (int tab = 0; tab < bar->count(); ++tab) {
        // A bar that is out of use may keep its last tab.
        const bool used = !bar->isHidden() && bar->count() > 1;
        DockWidget* dock = used ? dockOfTab(*bar, tab) : nullptr;
        if (!dock) {
            bar->setTabButton(tab, QTabBar::RightSide, nullptr);
            continue;
        }
        if (bar->tabIcon(tab).cacheKey() != dock->windowIcon().cacheKey())
            bar->setTabIcon(tab, dock->windowIcon());
        auto* button = qobject_cast<DockTabButton*>(bar->tabButton(tab, QTabBar::RightSide));
        if (!button || button->dock() != dock) {
            button = new DockTabButton(*dock, bar);
            bar->setTabButton(tab, QTabBar::RightSide, button);
        }
        button->setTabIsCurrent(tab == bar->currentIndex());
        wanted.append(button);
    }
    for (DockTabButton* button : bar->findChildren<DockTabButton*>(QString(), Qt::FindDirectChildrenOnly))
        if (!wanted.contains(button))
            button->deleteLater();
}

DockWidget* LayoutManager::dockOfTab(const QTabBar& bar, int tab) const
{
    // Titles may repeat. QMainWindow marks each tab with the address of its dock, which is only compared.
    const quintptr mark = bar.tabData(tab).value<quintptr>();
    DockWidget* sameTitle = nullptr;
    for (DockWidget* dock : docks()) {
        if (dock->windowTitle() != bar.tabText(tab))
            continue;
        if (reinterpret_cast<quintptr>(static_cast<QWidget*>(dock)) == mark)
            return dock;
        sameTitle = dock;
    }
    return sameTitle;
}

} // namespace Orn::Gui
