#pragma once

#include "applications/player/tweaks/tweakstree.h"

#include <set>

namespace Zph::Applications::Player {

// Evaluates the condition of every row against the inputs of its own graph, shows and hides the rows whose
// answer changed, and then the rolls around them: a roll is shown while anything in it is.
void evaluateVisibility(const std::map<quint32, TweakBase*>& tweaks);

// The uids of the outputs whose condition, evaluated against the inputs of their graph, hides them.
std::set<quint32> hiddenOutputs(const QVector<PackageOutput>& outputs, const TweaksTree& tree);

} // namespace Zph::Applications::Player
