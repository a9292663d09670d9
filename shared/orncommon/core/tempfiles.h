#pragma once

#include <QString>

namespace Orn::Core {

/// A place for files that die with the run. The default root is removed with all that is in it when the
/// object dies; a root that was set stays. Messages go to the channel "TempFiles".
class TempFiles
{
public:
    /// Made on first use, after main has set the application's names; destroyed at exit.
    static TempFiles& getInstance();

    /// Starts at the default root.
    TempFiles();
    ~TempFiles();
    TempFiles(const TempFiles&) = delete;
    TempFiles& operator=(const TempFiles&) = delete;

    /// The system's temporary directory, then organization and application as folders.
    static QString getDefaultTempDir();

    /// Creates the directory where it is missing. On failure warns, keeps the old root and returns false.
    bool setRoot(const QString& path);

    /// The folder of that name below the root (the root itself for an empty name), created where it is
    /// missing. Empty on failure.
    QString getTempDir(const QString& name) const;

    /// An absolute path in getTempDir(folder); the file is not made. "%TIMESTAMP%" in the name becomes the
    /// milliseconds since the epoch, the same everywhere in the name. Empty on failure.
    QString getTempFile(const QString& name, const QString& folder) const;

private:
    QString m_defaultRoot;
    QString m_root;
};

} // namespace Orn::Core
