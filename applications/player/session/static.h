#pragma once

#include <QIcon>
#include <QObject>
#include <QStringList>

namespace Zph::Applications::Player {

/// What the command line said.
struct CommandLine
{
    bool developerMode = false;
    bool autoReload = false;
    QString presetsPath;    ///< as given; taken only if it exists
    QStringList inputFiles; ///< as given; those that don't exist are dropped
};

/// What the whole process knows: what the command line said, the last file and the recent ones, the
/// timeline's state that others ask for, and the flags that span windows and views. Made at the first use,
/// which is when a new version of the program starts with clean settings; lives until the process ends. Main
/// thread.
class Static : public QObject
{
    Q_OBJECT

public:
    static Static& instance();

    void readCommandLine(const CommandLine& arguments);

    /// Makes the file the current one and the first of the recent ones, and remembers its folder.
    void rememberFile(const QString& path);
    /// Absolute paths, at most 10, the latest first. A "?" in a path breaks its entry.
    QStringList recentFiles() const;

    /// The archives that are built into the program.
    const QStringList& stockPackageFiles() const;

    /// Keeps the base-2 logarithm of the largest width and height that cooking makes; 0 for none.
    void setSizeLimit(int logarithm);
    int sizeLimit() const { return m_sizeLimit; }

    const QIcon& presetIcon() const;
    const QIcon& foldIcon() const;

    bool developerMode = false;
    bool autoReload = false;
    QString presetsPath;
    QStringList inputFiles;
    QString currentFile;
    /// The document came over the remote link.
    bool remoteMode = false;
    /// The timeline plays or is dragged: no status texts.
    bool timelineBusy = false;
    /// Sliders raise their change on release only.
    bool generateOnRelease = false;
    float timelineTime = 0.0f;  ///< seconds
    int timelineFrames = 200;   ///< length
    float timelineRate = 30.0f; ///< frames a second

private:
    Static();

    int m_sizeLimit = 0;
};

} // namespace Zph::Applications::Player
