#pragma once

#include "applications/player/tweaks/rollbase.h"

namespace Zph::Applications::Player {

// The panel of one level of a group's path.
class RollGroup : public RollBase
{
    Q_OBJECT

public:
    RollGroup(const QString& name, const QString& description, QWidget* parent);
};

} // namespace Zph::Applications::Player
