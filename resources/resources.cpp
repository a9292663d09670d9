#include "resources/resources.h"

#include <QtGlobal>

// Q_INIT_RESOURCE declares a function of the global namespace, so it may not stand in another.
static void initGroups()
{
    Q_INIT_RESOURCE(orn_gui);
    Q_INIT_RESOURCE(orn_colormanagementui);
    Q_INIT_RESOURCE(zph_editor_gui);
    Q_INIT_RESOURCE(zph_applications_player);
}

namespace Orn::Resources {

void initResources()
{
    initGroups();
}

} // namespace Orn::Resources
