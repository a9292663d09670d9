#include "orncommon/core/settingkey.h"

#include "orncommon/core/applicationsettings.h"

namespace Orn::Core {

QSharedPointer<ISettings> settingsForKey(const QString& key)
{
    const ApplicationSettings& settings = ApplicationSettings::getInstance();
    return key.startsWith(QLatin1String("preferences/")) ? settings.getSettingsUserPreferences()
                                                         : settings.getSettingsSessions();
}

} // namespace Orn::Core
