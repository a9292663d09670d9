#include "orncommon/core/applicationsettingsdefaultdelegate.h"

#include "orncommon/core/applicationversion.h"
#include "orncommon/core/defaultsettings.h"
#include "orncommon/core/tempfiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

namespace Orn::Core {

namespace {

// The first major version whose keys and directories carry no version number.
constexpr int firstPlainMajor = 7;

QString joinWithVersion(QStringList parts, int major)
{
    if (major < firstPlainMajor)
        parts.append(QString::number(major));
    return parts.join(QLatin1Char('/'));
}

QString createOnce(const QString& path, bool& tried)
{
    if (!tried) {
        tried = true;
        QDir::root().mkpath(path);
    }
    return path;
}

} // namespace

ApplicationSettingsDefaultDelegate::ApplicationSettingsDefaultDelegate(QObject* parent)
    : QObject(parent), m_settings(QSharedPointer<DefaultSettings>::create(
                           ApplicationVersion::getOrganization(), ApplicationVersion::getApplicationName()))
{
    const ApplicationVersion& version = ApplicationVersion::getCurrent();
    const int major = version.isDefined() ? version.getMajor() : 0;
    if (major < firstPlainMajor)
        m_settings->beginGroup(QString::number(major) + QStringLiteral("_x")); // stays open
}

QSharedPointer<ISettings> ApplicationSettingsDefaultDelegate::getSettings(const QString&)
{
    return m_settings;
}

QSharedPointer<ISettings> ApplicationSettingsDefaultDelegate::getConfigurationSettings()
{
    return m_settings;
}

QSharedPointer<ISettings> ApplicationSettingsDefaultDelegate::getProjectSettings(const QString&)
{
    return m_settings;
}

QList<QSharedPointer<ISettings>> ApplicationSettingsDefaultDelegate::getAllProjectsSettings()
{
    return {m_settings};
}

QString ApplicationSettingsDefaultDelegate::getApplicationBinaryDir()
{
    return QCoreApplication::applicationDirPath();
}

QString ApplicationSettingsDefaultDelegate::getApplicationInstallDir()
{
    return getApplicationBinaryDir();
}

QString ApplicationSettingsDefaultDelegate::getApplicationDataDir()
{
    static bool tried = false;
    return createOnce(sGetApplicationDataDir(ApplicationVersion::getOrganization(),
                                             ApplicationVersion::getApplicationName(),
                                             ApplicationVersion::getCurrent().getMajor()),
                      tried);
}

QString ApplicationSettingsDefaultDelegate::getApplicationDocumentsDir()
{
    static bool tried = false;
    return createOnce(sGetApplicationDocumentsDir(ApplicationVersion::getOrganization(),
                                                  ApplicationVersion::getApplicationName(),
                                                  ApplicationVersion::getCurrent().getMajor()),
                      tried);
}

QString ApplicationSettingsDefaultDelegate::getApplicationTempDir()
{
    return TempFiles::getInstance().getTempDir(QString());
}

QString ApplicationSettingsDefaultDelegate::sGetApplicationDataDir(const QString&, const QString&, int major)
{
    // QStandardPaths has put organization and application into this location already.
    return joinWithVersion({QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation)}, major);
}

QString ApplicationSettingsDefaultDelegate::sGetApplicationDocumentsDir(const QString& organization,
                                                                        const QString& application, int major)
{
    return joinWithVersion(
        {QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation), organization, application},
        major);
}

} // namespace Orn::Core
