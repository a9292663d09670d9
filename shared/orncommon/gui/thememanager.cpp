#include "orncommon/gui/thememanager.h"

#include "orncommon/core/channellogger.h"
#include "orncommon/gui/style.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>

namespace Orn::Gui {

namespace {
const Core::Log::ChannelLogger logger("Theme");
} // namespace

ThemeManager::ThemeManager(QObject* parent) : QObject(parent)
{
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &ThemeManager::onWatchedChanged);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &ThemeManager::onWatchedChanged);
}

ThemeManager::~ThemeManager() = default;

void ThemeManager::addThemeFile(const QByteArray& theme, const QString& path)
{
    m_files[theme].append(path);
}

void ThemeManager::setCurrentTheme(const QByteArray& theme)
{
    m_currentTheme = theme;
    apply();
}

void ThemeManager::watchFile(const QString& path)
{
    const QFileInfo info(path);
    m_watchedFiles.append(info.absoluteFilePath());
    m_watcher.addPath(info.absoluteFilePath());
    m_watcher.addPath(info.absolutePath());
}

void ThemeManager::onWatchedChanged()
{
    // A file that was replaced by a rename is no longer watched.
    for (const QString& path : qAsConst(m_watchedFiles))
        if (QFileInfo::exists(path) && !m_watcher.files().contains(path))
            m_watcher.addPath(path);
    apply();
}

void ThemeManager::apply()
{
    if (!QCoreApplication::instance())
        return;
    QByteArray sheet;
    for (const QString& path : m_files.value(m_currentTheme)) {
        QFile file(path);
        if (file.open(QIODevice::ReadOnly))
            sheet += file.readAll();
        else
            logger.warning(QStringLiteral("Can't open theme file:") + path);
    }
    qApp->setStyleSheet(QString::fromUtf8(sheet));
}

void setUpTheme(ThemeManager& manager, const QString& resourceDir)
{
    QByteArray theme = "orn";
    const QString sheet = resourceDir + QStringLiteral("/styles/orn.qss");
    if (QFileInfo::exists(sheet))
        manager.addThemeFile(theme, sheet);

    const QString developed = QFile::decodeName(qgetenv("VELLOR_QSS_PATH"));
    if (!developed.isEmpty() && QFileInfo(developed).isFile()) {
        theme = "orn-dev";
        manager.addThemeFile(theme, developed);
        manager.watchFile(developed);
    }
    manager.setCurrentTheme(theme);
    QApplication::setStyle(new Style);
}

} // namespace Orn::Gui
