#pragma once

#include <map>

#include <QtGlobal>

namespace Zph::Applications::Player {

class TweakBase;

// Evaluates the condition of every row against the inputs of its own graph, shows and hides the rows whose
// answer changed, and then the rolls around them: a roll is shown while anything in it is.
void evaluateVisibility(const std::map<quint32, TweakBase*>& tweaks);

} // namespace Zph::Applications::Player
