#include "orncommon/core/system.h"

#include "orncommon/core/channellogger.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace Orn::Core::System {

namespace {

const Log::ChannelLogger logger("System");

bool copyFile(const QString& from, const QString& to)
{
    const QString folder = QFileInfo(to).absolutePath();
    if (!QDir::root().mkpath(folder)) {
        logger.error(QStringLiteral("Fail to make path file: %1").arg(folder));
        return false;
    }
    if (QFile::copy(from, to))
        return true;
    logger.error(QStringLiteral("Unable to copy file:"));
    logger.error(QStringLiteral("   from:") + from);
    logger.error(QStringLiteral("   to  :") + to);
    return false;
}

} // namespace

bool removeDirectory(const QString& path)
{
    // An empty path would be the current directory to QDir.
    return !path.isEmpty() && QDir(path).removeRecursively();
}

void collectFiles(QStringList& files, const QString& root, CollectFlags flags)
{
    const QDir folder(root);
    for (const QString& entry :
         folder.entryList(QDir::Files | QDir::Dirs | QDir::Readable | QDir::NoDotAndDotDot)) {
        const QFileInfo info(folder.absoluteFilePath(entry));
        if (!info.isDir())
            files.append(info.absoluteFilePath());
        else if (flags.testFlag(CollectRecursively) && !info.isSymLink())
            collectFiles(files, info.absoluteFilePath(), flags);
    }
}

bool copyDirectory(const QString& from, const QString& to)
{
    QStringList files;
    collectFiles(files, from, CollectRecursively);
    const QDir source(from);
    const QDir target(to);
    bool copied = true;
    for (const QString& file : files)
        copied &= copyFile(file, target.absoluteFilePath(source.relativeFilePath(file)));
    return copied;
}

} // namespace Orn::Core::System
