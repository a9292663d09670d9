#pragma once

#include <QFileSystemWatcher>
#include <QTimer>

namespace Zph::Applications::Player {

// Tells when one file has new content, however it came there: written over, replaced by another file of that
// name, or deleted and made anew; and when it is gone. Speaks once, when nothing has happened to the file for
// a moment, so that nobody reads what is half-written. Main thread.
class FileFollower : public QObject
{
    Q_OBJECT

public:
    explicit FileFollower(QObject* parent = nullptr);

    // In place of the file before; an empty path for none. It need not be there yet.
    void follow(const QString& path);

signals:
    void contentChanged();
    void vanished();

private:
    void watch();
    void onFolderChanged();
    void onQuiet();

    QString m_path;
    QFileSystemWatcher m_watcher;
    QTimer m_quiet;
};

} // namespace Zph::Applications::Player
