#pragma once

#include <QByteArray>
#include <QFileSystemWatcher>
#include <QHash>
#include <QObject>
#include <QStringList>

namespace Orn::Gui {

/// The style sheets of the program: files, grouped by theme, whose texts make the application's sheet. GUI
/// thread.
class ThemeManager : public QObject
{
    Q_OBJECT

public:
    explicit ThemeManager(QObject* parent = nullptr);
    ~ThemeManager() override;

    void addThemeFile(const QByteArray& theme, const QString& path);
    void setCurrentTheme(const QByteArray& theme);
    QByteArray currentTheme() const { return m_currentTheme; }

    /// Applies the current theme again whenever the file changes or is replaced.
    void watchFile(const QString& path);

public Q_SLOTS:
    /// Gives the current theme's files, in order of addition, to the application. A file that cannot be
    /// opened is skipped with a warning. Without an application nothing is done.
    void apply();

private:
    void onWatchedChanged();

    QHash<QByteArray, QStringList> m_files;
    QByteArray m_currentTheme;
    QFileSystemWatcher m_watcher;
    QStringList m_watchedFiles;
};

/// Chooses, loads and applies the program's theme, and gives the application its Style: "orn" with the sheet
/// below the resource directory, or "orn-dev" with the file that the environment variable VELLOR_QSS_PATH
/// names, which is watched.
void setUpTheme(ThemeManager& manager, const QString& resourceDir);

} // namespace Orn::Gui
