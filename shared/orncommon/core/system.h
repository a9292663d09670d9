#pragma once

#include <QFlags>
#include <QString>
#include <QStringList>

/// What the program does with whole folders. Messages go to the channel "System".
namespace Orn::Core::System {

enum CollectFlag
{
    CollectTopLevel = 0,
    CollectRecursively = 1
};
Q_DECLARE_FLAGS(CollectFlags, CollectFlag)

/// Removes a directory and all that is in it. False if something is left, or for an empty path.
bool removeDirectory(const QString& path);

/// Adds the absolute paths of the readable files in a folder, and below it if asked. Links to folders are not
/// followed, so that a circle of them ends.
void collectFiles(QStringList& files, const QString& root, CollectFlags flags);

/// Copies all files below `from` to the same places below `to`; files that exist there stay. Failures are
/// logged and do not stop the copy; true if there was none.
bool copyDirectory(const QString& from, const QString& to);

} // namespace Orn::Core::System

Q_DECLARE_OPERATORS_FOR_FLAGS(Orn::Core::System::CollectFlags)
