#pragma once

#include "applications/player/presets/presetdescription.h"

#include <map>

namespace Zph::Applications::Player {

class TweakBase;

// The rows of a graph, by uid.
using Tweaks = std::map<quint32, TweakBase*>;

enum class Collected
{
    Changed, // what isn't at its default
    All      // so that applying it brings back even a missing picture
};

// The values of rows as the entries of a preset, by uid.
QVector<PresetInput> collectValues(const Tweaks& tweaks, Collected what = Collected::Changed);

// Gives the rows the values of a preset, in the order of their uids. A row without an entry of its type goes
// back to its default, save a picture, which stays. A picture may ask the user something, so that rows can be
// gone afterwards.
void applyValues(const Tweaks& tweaks, const PresetDescription& preset);

// Whether a preset that was made for another graph suits these rows.
bool isCompatible(const PresetDescription& preset, const Tweaks& tweaks);

bool isAnyChanged(const Tweaks& tweaks);

} // namespace Zph::Applications::Player
