#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <boost/signals2/connection.hpp>

class QAction;

namespace Zph::Applications::Player {

class MainWindow;

/// Binds the engine switcher to the window: selects and loads an engine when it is made, offers "Switch
/// engine...", and swaps the library in the running program when its file was rebuilt on disk. The window's
/// engine session is gone before a library goes. Main thread. The library is unloaded by the destructor.
class EngineDynSwitch : public QObject
{
    Q_OBJECT

public:
    /// The window outlives its use here, but may be deleted first.
    explicit EngineDynSwitch(MainWindow* window);
    ~EngineDynSwitch() override;

public slots:
    /// Lets the user choose until an engine loads; false if the dialog was cancelled.
    bool switchEngineDialog();
    void fileChanged(const QString& path);
    void reloadDynamicLibrary();

private:
    void addActions();
    void selectFirstEngine();
    void onChanged();
    void watchCurrent();

    QPointer<MainWindow> m_window;
    QFileSystemWatcher m_watcher;
    QTimer m_settleTimer; // a library is written in several steps
    int m_settleTries = 0;
    boost::signals2::scoped_connection m_aboutToChange, m_changed;
};

} // namespace Zph::Applications::Player
