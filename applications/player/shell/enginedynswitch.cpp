#include "enginedynswitch.h"

#include "applications/player/session/engine.h"
#include "applications/player/shell/mainactions.h"
#include "applications/player/shell/mainwindow.h"
#include "common/engine/backend.h"
#include "common/engine/engineswitcher.h"
#include "common/gui/engineselectionwidget.h"

#include <QAction>
#include <QFileInfo>
#include <QMenu>
#include <QToolBar>

namespace Zph::Applications::Player {

namespace Switcher = Zph::Engine::Switcher;

namespace {

constexpr int kSettleDelay = 300; // ms from the last change of the file to the look at it
constexpr int kSettleTries = 30;  // looks, before the engine that runs is kept

} // namespace

EngineDynSwitch::EngineDynSwitch(MainWindow* window) : m_window(window)
{
    addActions();
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &EngineDynSwitch::fileChanged);
    m_settleTimer.setSingleShot(true);
    m_settleTimer.setInterval(kSettleDelay);
    connect(&m_settleTimer, &QTimer::timeout, this, &EngineDynSwitch::reloadDynamicLibrary);
    m_aboutToChange = Switcher::aboutToChange().connect([this](const QString&) {
        if (m_window)
            m_window->deleteEngine();
    });
    m_changed = Switcher::changed().connect([this](const QString&, bool) { onChanged(); });
    selectFirstEngine();
    watchCurrent();
}

EngineDynSwitch::~EngineDynSwitch()
{
    Zph::Engine::unload();
}

void EngineDynSwitch::addActions()
{
    auto* action = new QAction(playerIcon("switchdyn"), tr("&Switch engine..."), this);
    action->setPriority(QAction::LowPriority);
    action->setShortcut(Qt::Key_F9);
    action->setToolTip(tr("Switch Vellor Engine... Shortcut: [F9]."));
    connect(action, &QAction::triggered, this, &EngineDynSwitch::switchEngineDialog);
    const MainMenus& menus = m_window->menus();
    menus.toolBar->addSeparator();
    menus.toolBar->addAction(action);
    menus.options->addSeparator();
    menus.options->addAction(action);
}

void EngineDynSwitch::selectFirstEngine()
{
    if (Switcher::loadCurrent({}))
        return;
    const auto engines = Switcher::listEngines();
    if (engines.size() == 1 && Switcher::load(engines.first()->path))
        return;
    switchEngineDialog();
}

bool EngineDynSwitch::switchEngineDialog()
{
    for (;;) {
        Zph::Gui::EngineSelectionWidget dialog(Switcher::listEngines(), Switcher::current(), m_window);
        if (dialog.exec() != QDialog::Accepted)
            return false;
        const QString path = dialog.selectedPath();
        if (Switcher::load(path) && QFileInfo(Switcher::current()) == QFileInfo(path))
            return true;
        Zph::Gui::EngineSelectionWidget::showInvalidEngine(path, m_window);
    }
}

void EngineDynSwitch::onChanged()
{
    watchCurrent();
    if (m_window)
        m_window->reload();
}

void EngineDynSwitch::watchCurrent()
{
    if (!m_watcher.files().isEmpty())
        m_watcher.removePaths(m_watcher.files());
    if (!Switcher::current().isEmpty())
        m_watcher.addPath(Switcher::current());
}

void EngineDynSwitch::fileChanged(const QString&)
{
    if (m_window && m_window->engine())
        m_window->engine()->stop();
    m_settleTries = 0;
    m_settleTimer.start();
}

void EngineDynSwitch::reloadDynamicLibrary()
{
    const QString path = Switcher::current();
    if (path.isEmpty() || !m_window)
        return;
    // The engine that runs stays until the file is an engine again, and until the generation that it is in
    // has ended.
    if (m_window->isGenerating() || !Zph::Engine::probe(path)) {
        // A file that is away comes back when the build is done, however long that takes.
        if (!QFileInfo::exists(path) || ++m_settleTries < kSettleTries)
            m_settleTimer.start();
        else
            watchCurrent(); // a file that was replaced is no longer watched
        return;
    }
    m_window->deleteEngine();
    Switcher::load(path);
}

} // namespace Zph::Applications::Player
