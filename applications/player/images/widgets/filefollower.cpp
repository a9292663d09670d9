#include "applications/player/images/widgets/filefollower.h"

#include <QDir>
#include <QFileInfo>

#include <chrono>

namespace Zph::Applications::Player {

namespace {

constexpr std::chrono::milliseconds quietTime(200);

} // namespace

FileFollower::FileFollower(QObject* parent) : QObject(parent)
{
    m_quiet.setSingleShot(true);
    m_quiet.setInterval(quietTime);
    connect(&m_quiet, &QTimer::timeout, this, &FileFollower::onQuiet);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, &m_quiet, qOverload<>(&QTimer::start));
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &FileFollower::onFolderChanged);
}

void FileFollower::follow(const QString& path)
{
    m_quiet.stop();
    m_path = path;
    watch();
}

// A file that is gone is waited for through its folder; a file that took its place is another one to the
// system, so the watch is set up anew each time.
void FileFollower::watch()
{
    const QStringList watched = m_watcher.files() + m_watcher.directories();
    if (!watched.isEmpty())
        m_watcher.removePaths(watched);
    const QFileInfo file(m_path);
    if (file.isFile())
        m_watcher.addPath(m_path);
    else if (!m_path.isEmpty() && file.dir().exists())
        m_watcher.addPath(file.absolutePath());
}

void FileFollower::onFolderChanged()
{
    if (QFileInfo(m_path).isFile())
        m_quiet.start();
}

void FileFollower::onQuiet()
{
    watch();
    if (QFileInfo(m_path).isFile())
        emit contentChanged();
    else
        emit vanished();
}

} // namespace Zph::Applications::Player
