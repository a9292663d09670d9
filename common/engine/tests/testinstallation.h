#pragma once

#include "orncommon/core/applicationsettingsdefaultdelegate.h"
#include "orncommon/core/defaultsettings.h"

#include <QDir>
#include <QTemporaryDir>

namespace Zph::Engine::Tests {

/// An installation of the test's own, with its own settings, for the rest of the process or until the next
/// one.
class TestInstallation
{
public:
    TestInstallation()
    {
        QDir(m_folder.path()).mkpath(QStringLiteral("plugins/engines"));
        Orn::Core::ApplicationSettings::getInstance().setDelegate(
            QSharedPointer<Delegate>::create(m_folder.path()));
    }

    QString path(const QString& relative = {}) const { return m_folder.filePath(relative); }

    static QSharedPointer<Orn::Core::ISettings> settings()
    {
        return Orn::Core::ApplicationSettings::getInstance().getSettingsUserPreferences();
    }

private:
    class Delegate : public Orn::Core::ApplicationSettingsDefaultDelegate
    {
    public:
        explicit Delegate(const QString& folder)
            : m_folder(folder), m_settings(QSharedPointer<Orn::Core::DefaultSettings>::create(
                                    folder + "/settings.ini", Orn::Core::DefaultSettings::Format::Ini))
        {
        }
        QSharedPointer<Orn::Core::ISettings> getSettings(const QString&) override { return m_settings; }
        QString getApplicationBinaryDir() override { return m_folder; }

    private:
        QString m_folder;
        QSharedPointer<Orn::Core::ISettings> m_settings;
    };

    QTemporaryDir m_folder;
};

} // namespace Zph::Engine::Tests
