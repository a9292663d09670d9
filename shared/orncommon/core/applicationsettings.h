#pragma once

#include "orncommon/core/channellogger.h"
#include "orncommon/core/isettings.h"

#include <QList>
#include <QSharedPointer>
#include <QStringList>

#include <memory>

namespace Orn::Core {

/// Answers which store and which directory the program uses, by asking a replaceable delegate.
///
/// main sets organization, application name and version before the first use, since the default delegate
/// reads them when it is made. Main thread. After destroy() stores are null, and directories empty.
class ApplicationSettings
{
public:
    class IDelegate
    {
    public:
        virtual ~IDelegate() = default;

        virtual QSharedPointer<ISettings> getSettings(const QString& name) = 0;
        virtual QSharedPointer<ISettings> getConfigurationSettings() = 0;
        virtual QSharedPointer<ISettings> getProjectSettings(const QString& project) = 0;
        virtual QList<QSharedPointer<ISettings>> getAllProjectsSettings() = 0;
        virtual QString getApplicationBinaryDir() = 0;
        virtual QString getApplicationInstallDir() = 0;
        virtual QString getApplicationDataDir() = 0;
        virtual QString getApplicationDocumentsDir() = 0;
        virtual QString getApplicationTempDir() = 0;
    };

    /// Made on first use with an ApplicationSettingsDefaultDelegate, destroyed at exit.
    static ApplicationSettings& getInstance();

    ApplicationSettings();
    ~ApplicationSettings();
    ApplicationSettings(const ApplicationSettings&) = delete;
    ApplicationSettings& operator=(const ApplicationSettings&) = delete;

    void setDelegate(const QSharedPointer<IDelegate>& delegate);
    /// Drops the delegate and with it its stores, unless someone still holds them.
    void destroy();

    QSharedPointer<ISettings> getSettings(const QString& name) const;
    QSharedPointer<ISettings> getSettingsUserPreferences() const;
    QSharedPointer<ISettings> getSettingsSessions() const;
    QSharedPointer<ISettings> getConfigurationSettings() const;
    QSharedPointer<ISettings> getProjectSettings(const QString& project) const;
    QList<QSharedPointer<ISettings>> getAllProjectsSettings() const;
    QList<QSharedPointer<ISettings>> getAllProjectsSettingsReversed() const;

    QString getApplicationBinaryDir() const;
    QString getApplicationInstallDir() const;
    /// These two are created when first asked for.
    QString getApplicationDataDir() const;
    QString getApplicationDocumentsDir() const;
    QString getApplicationTempDir() const;
    /// Creates a new directory below the temporary one, called `name` ("tmp" if empty) and a number.
    QString getApplicationUniqueTempDir(const QString& name) const;

    /// The install directory, and the binary directory if it is another.
    QStringList getInstallDirSearchPaths() const;
    /// The first file or folder of that relative path below the search paths, cleaned; empty if there is
    /// none.
    QString searchInInstallDir(const QString& relative) const;
    /// The same, with a warning if there is none.
    QString findInInstallDir(const QString& relative) const;
    QString findExecutableInInstallDir(const QString& name) const;
    QString getApplicationResourceDir() const;

    /// Logs directories and settings on the channel "ApplicationSettings".
    void logInfos() const;

private:
    struct Private;
    std::unique_ptr<Private> m_private;
};

/// Logs "Settings:" and then each key with its value. Keys under a skipped prefix are named once, by that
/// prefix.
void logSettings(const ISettings& settings, const Log::ChannelLogger& logger,
                 const QStringList& skippedPrefixes = {});

} // namespace Orn::Core
