#pragma once

#include "applications/player/description/descriptionindex.h"

namespace Zph::Applications::Player {

// The text by which the panel sorts an input: graph key, the order of its group, then its own order or, for
// the engine's own inputs, the identifier. Orders are padded to eight digits, so that 3 stands ahead of 10;
// an input without one keeps its place in the source. An input without an element sorts by its uid.
QString inputSortKey(const DescriptionIndex& description, const DescribedItem& input, quint32 uid);

} // namespace Zph::Applications::Player
