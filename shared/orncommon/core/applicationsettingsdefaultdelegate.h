#pragma once

#include "orncommon/core/applicationsettings.h"

#include <QObject>

namespace Orn::Core {

/// One store for all purposes: the user's, for the organization and application names of QCoreApplication.
///
/// Programs up to major version 6 keep their keys below "6_x" and the like; since 7 they stand at the top.
class ApplicationSettingsDefaultDelegate : public QObject, public ApplicationSettings::IDelegate
{
    Q_OBJECT

public:
    explicit ApplicationSettingsDefaultDelegate(QObject* parent = nullptr);

    QSharedPointer<ISettings> getSettings(const QString& name) override;
    QSharedPointer<ISettings> getConfigurationSettings() override;
    QSharedPointer<ISettings> getProjectSettings(const QString& project) override;
    QList<QSharedPointer<ISettings>> getAllProjectsSettings() override;
    QString getApplicationBinaryDir() override;
    QString getApplicationInstallDir() override;
    QString getApplicationDataDir() override;
    QString getApplicationDocumentsDir() override;
    QString getApplicationTempDir() override;

    /// The paths alone; nothing is created. The major version is part of them below 7.
    static QString sGetApplicationDataDir(const QString& organization, const QString& application, int major);
    static QString sGetApplicationDocumentsDir(const QString& organization, const QString& application,
                                               int major);

private:
    QSharedPointer<ISettings> m_settings;
};

} // namespace Orn::Core
