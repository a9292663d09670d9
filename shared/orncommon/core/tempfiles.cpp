#include "orncommon/core/tempfiles.h"

#include "orncommon/core/applicationversion.h"
#include "orncommon/core/channellogger.h"
#include "orncommon/core/system.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace Orn::Core {

namespace {

const Log::ChannelLogger logger("TempFiles");

void deleteDirectory(const QString& path)
{
    logger.info(QStringLiteral("Delete directory '%1'").arg(path));
    logger.info(System::removeDirectory(path) ? QStringLiteral("   Done.") : QStringLiteral("   Failed."));
}

} // namespace

TempFiles& TempFiles::getInstance()
{
    static TempFiles instance;
    return instance;
}

// setRoot logs, so that the log manager is there before this object and outlives it.
TempFiles::TempFiles() : m_defaultRoot(QDir::cleanPath(QFileInfo(getDefaultTempDir()).absoluteFilePath()))
{
    setRoot(m_defaultRoot);
}

TempFiles::~TempFiles()
{
    if (m_root == m_defaultRoot)
        deleteDirectory(m_root);
}

QString TempFiles::getDefaultTempDir()
{
    const QStringList parts{QDir::tempPath(), ApplicationVersion::getOrganization(),
                            ApplicationVersion::getApplicationName()};
    return parts.join(QLatin1Char('/'));
}

bool TempFiles::setRoot(const QString& path)
{
    const QFileInfo info(path);
    const QString absolute = path.isEmpty() ? QString() : QDir::cleanPath(info.absoluteFilePath());
    if (info.exists() && !info.isDir()) {
        logger.warning(QStringLiteral("Can't set the file path '%1' as temporary directory").arg(absolute));
        return false;
    }
    if (info.exists() && !info.isWritable()) {
        logger.warning(
            QStringLiteral("Can't set a non writable directory as temporary directory ('%1')").arg(absolute));
        return false;
    }
    if (!info.exists() && (absolute.isEmpty() || !QDir::root().mkpath(absolute))) {
        logger.warning(QStringLiteral("Fail to create directory '%1'").arg(absolute));
        return false;
    }
    m_root = absolute;
    logger.info(QStringLiteral("Set new temporary directory to '%1'").arg(absolute));
    return true;
}

QString TempFiles::getTempDir(const QString& name) const
{
    const QString path = QDir::cleanPath(m_root + QLatin1Char('/') + name);
    if (!m_root.isEmpty() && (QFileInfo(path).isDir() || QDir::root().mkpath(path)))
        return path;
    logger.error(QStringLiteral("Fail to create temp path '%1'").arg(path));
    return {};
}

QString TempFiles::getTempFile(const QString& name, const QString& folder) const
{
    const QString directory = getTempDir(folder);
    if (directory.isEmpty())
        return {};
    QString fileName = name;
    fileName.replace(QLatin1String("%TIMESTAMP%"), QString::number(QDateTime::currentMSecsSinceEpoch()));
    return QDir(directory).absoluteFilePath(fileName);
}

} // namespace Orn::Core
