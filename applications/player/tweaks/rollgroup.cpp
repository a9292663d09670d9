#include "applications/player/tweaks/rollgroup.h"

#include "applications/player/tweaks/sharedicon.h"

namespace Zph::Applications::Player {

RollGroup::RollGroup(const QString& name, const QString& description, QWidget* parent)
    : RollBase(name.toHtmlEscaped(), parent)
{
    if (!description.isEmpty())
        headerFrame()->setToolTip(plainToolTip(description));
}

} // namespace Zph::Applications::Player
