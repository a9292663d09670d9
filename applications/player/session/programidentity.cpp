#include "applications/player/session/programidentity.h"

#include "orncommon/core/applicationversion.h"

#include <QCoreApplication>

namespace Zph::Applications::Player {

void setProgramIdentity()
{
    auto& version = Orn::Core::ApplicationVersion::getCurrent();
    version.setTag({});
    version.setVersionNumber(10, 1, 1, 3475, "e94872d4");
    version.setBuildDate(Orn::Core::ApplicationVersion::createBuildDate("Apr 10 2020"));
    QCoreApplication::setOrganizationName("Ornex");
    QCoreApplication::setApplicationName("Vellor Player");
    QCoreApplication::setApplicationVersion(version.buildVersionStr());
}

} // namespace Zph::Applications::Player
