#pragma once

#include "applications/player/presets/presetdescription.h"

#include <QByteArray>

namespace Zph::Applications::Player {

// An attribute preset that restores values on a Maya node, in MEL and UTF-8. `inputs` are those that aren't
// at their defaults, in the order of the lines. Pictures and the output size have no attributes there.
QByteArray mayaPreset(const QVector<PresetInput>& inputs);

// The same as a file, which appears only when all of it is written. Returns an empty text, or what went
// wrong.
QString writeMayaPreset(const QString& path, const QVector<PresetInput>& inputs);

} // namespace Zph::Applications::Player
