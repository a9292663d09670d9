#pragma once

#include <QDomDocument>

#include <set>
#include <vector>

namespace Zph::Applications::Player {

// For each engine input index, the uids of the outputs that a change of it alters. An index at or beyond the
// size is an input that nothing is known of.
using AlterationLinks = std::vector<std::set<quint32>>;

// Reads the root elements `outputs` and `inputs` of a description. Entries without both of their attributes,
// or with an index that isn't a number, count for nothing, and so do indexes at or beyond `inputCount`, the
// number of inputs that the engine has. Empty when the description has no links.
AlterationLinks readAlterationLinks(const QDomDocument& document, size_t inputCount);

} // namespace Zph::Applications::Player
