#include "orncommon/core/settingsversion.h"

#include "orncommon/core/applicationversion.h"

namespace Orn::Core {

bool wipeIfOtherVersion(ISettings& settings)
{
    const QString current = ApplicationVersion::getCurrent().buildVersionStr();
    if (settingsVersion.read(settings) == current)
        return false;
    settings.remove(QString());
    settings.removeAllKeys();
    settings.setValue(settingsVersion.key, current);
    return true;
}

} // namespace Orn::Core
