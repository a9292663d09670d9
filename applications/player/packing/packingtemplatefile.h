#pragma once

#include "applications/player/packing/packingtemplate.h"

namespace Zph::Applications::Player {

// Reads the text of a template; nothing, and the reason, for one that is none: what is wrong and where,
// "line 3, column 7: ..." or "files[1].channels.g: expected ...". Keys that mean nothing are errors. The
// codecs are registered before, since they know which formats there are.
std::optional<PackingTemplate> parsePackingTemplate(const QByteArray& text, QString& reason);

// The same for a file, which is not looked at beyond a mebibyte.
std::optional<PackingTemplate> readPackingTemplate(const QString& path, QString& reason);

} // namespace Zph::Applications::Player
