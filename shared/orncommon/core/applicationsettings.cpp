#include "orncommon/core/applicationsettings.h"

#include "orncommon/core/applicationsettingsdefaultdelegate.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace Orn::Core {

namespace {

const Log::ChannelLogger logger("ApplicationSettings");

QString existingPath(const QString& directory, const QString& relative)
{
    const QString path = directory + QLatin1Char('/') + relative;
    return QFileInfo::exists(path) ? QDir::cleanPath(path) : QString();
}

} // namespace

struct ApplicationSettings::Private
{
    QSharedPointer<IDelegate> delegate;
};

ApplicationSettings& ApplicationSettings::getInstance()
{
    static ApplicationSettings instance;
    return instance;
}

ApplicationSettings::ApplicationSettings() : m_private(std::make_unique<Private>())
{
    setDelegate(QSharedPointer<ApplicationSettingsDefaultDelegate>::create());
}

ApplicationSettings::~ApplicationSettings() = default;

void ApplicationSettings::setDelegate(const QSharedPointer<IDelegate>& delegate)
{
    if (!m_private)
        m_private = std::make_unique<Private>();
    m_private->delegate = delegate;
}

void ApplicationSettings::destroy()
{
    m_private.reset();
}

QSharedPointer<ISettings> ApplicationSettings::getSettings(const QString& name) const
{
    return m_private ? m_private->delegate->getSettings(name) : nullptr;
}

QSharedPointer<ISettings> ApplicationSettings::getSettingsUserPreferences() const
{
    return getSettings(QStringLiteral("user_preferences"));
}

QSharedPointer<ISettings> ApplicationSettings::getSettingsSessions() const
{
    return getSettings(QString());
}

QSharedPointer<ISettings> ApplicationSettings::getConfigurationSettings() const
{
    return m_private ? m_private->delegate->getConfigurationSettings() : nullptr;
}

QSharedPointer<ISettings> ApplicationSettings::getProjectSettings(const QString& project) const
{
    return m_private ? m_private->delegate->getProjectSettings(project) : nullptr;
}

QList<QSharedPointer<ISettings>> ApplicationSettings::getAllProjectsSettings() const
{
    return m_private ? m_private->delegate->getAllProjectsSettings() : QList<QSharedPointer<ISettings>>();
}

QList<QSharedPointer<ISettings>> ApplicationSettings::getAllProjectsSettingsReversed() const
{
    QList<QSharedPointer<ISettings>> stores = getAllProjectsSettings();
    std::reverse(stores.begin(), stores.end());
    return stores;
}

QString ApplicationSettings::getApplicationBinaryDir() const
{
    return m_private ? m_private->delegate->getApplicationBinaryDir() : QString();
}

QString ApplicationSettings::getApplicationInstallDir() const
{
    return m_private ? m_private->delegate->getApplicationInstallDir() : QString();
}

QString ApplicationSettings::getApplicationDataDir() const
{
    return m_private ? m_private->delegate->getApplicationDataDir() : QString();
}

QString ApplicationSettings::getApplicationDocumentsDir() const
{
    return m_private ? m_private->delegate->getApplicationDocumentsDir() : QString();
}

QString ApplicationSettings::getApplicationTempDir() const
{
    return m_private ? m_private->delegate->getApplicationTempDir() : QString();
}

QString ApplicationSettings::getApplicationUniqueTempDir(const QString& name) const
{
    const QString base =
        getApplicationTempDir() + QLatin1Char('/') + (name.isEmpty() ? QStringLiteral("tmp") : name);
    int number = 0;
    while (QFileInfo::exists(base + QString::number(number)))
        ++number;
    const QString path = base + QString::number(number);
    QDir::root().mkpath(path);
    return path;
}

QStringList ApplicationSettings::getInstallDirSearchPaths() const
{
    const QString install = getApplicationInstallDir();
    const QString binary = getApplicationBinaryDir();
    return install == binary ? QStringList{install} : QStringList{install, binary};
}

QString ApplicationSettings::searchInInstallDir(const QString& relative) const
{
    for (const QString& directory : getInstallDirSearchPaths()) {
        const QString path = existingPath(directory, relative);
        if (!path.isEmpty())
            return path;
    }
    return {};
}

QString ApplicationSettings::findInInstallDir(const QString& relative) const
{
    const QString path = searchInInstallDir(relative);
    if (path.isEmpty())
        logger.warning(QStringLiteral("File not found: %1").arg(relative));
    return path;
}

QString ApplicationSettings::findExecutableInInstallDir(const QString& name) const
{
    return findInInstallDir(name);
}

QString ApplicationSettings::getApplicationResourceDir() const
{
    const QString path = findInInstallDir(QStringLiteral("resources"));
    if (path.isEmpty())
        logger.warning(QStringLiteral("Resources Path not found"));
    return path;
}

void ApplicationSettings::logInfos() const
{
    logger.info(QStringLiteral("ApplicationInstallDir: %1").arg(getApplicationInstallDir()));
    logger.info(QStringLiteral("ApplicationResourceDir: %1").arg(getApplicationResourceDir()));
    logger.info(QStringLiteral("ApplicationDocumentsDir: %1").arg(getApplicationDocumentsDir()));
    logger.info(QStringLiteral("Plugins Directories:"));
    bool found = false;
    for (const QString& directory : getInstallDirSearchPaths()) {
        const QString path = existingPath(directory, QStringLiteral("plugins"));
        if (path.isEmpty())
            continue;
        found = true;
        logger.info(QStringLiteral("   %1").arg(path));
    }
    if (!found)
        logger.warning(QStringLiteral("No Plugins path found !"));
    if (const QSharedPointer<ISettings> settings = getSettingsSessions())
        logSettings(*settings, logger,
                    {QStringLiteral("5_x/"), QStringLiteral("6_x/"),
                     QStringLiteral("session/properties/widgetsState/")});
}

void logSettings(const ISettings& settings, const Log::ChannelLogger& channel,
                 const QStringList& skippedPrefixes)
{
    channel.info(QStringLiteral("Settings:"));
    QStringList reported;
    for (const QString& key : settings.allKeys()) {
        const auto skipped = std::find_if(skippedPrefixes.begin(), skippedPrefixes.end(),
                                          [&](const QString& prefix) { return key.startsWith(prefix); });
        if (skipped == skippedPrefixes.end()) {
            const QVariant value = settings.value(key);
            channel.info(QStringLiteral("   %1=%2")
                             .arg(key, value.isValid() ? value.toString() : QStringLiteral("INVALID")));
        } else if (!reported.contains(*skipped)) {
            reported.append(*skipped);
            channel.info(QStringLiteral("   Skip all data under '%1'").arg(*skipped));
        }
    }
}

} // namespace Orn::Core
