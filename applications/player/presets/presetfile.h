#pragma once

#include "applications/player/presets/presetdescription.h"

#include <optional>

class QXmlStreamWriter;

namespace Zph::Applications::Player {

// What goes with a preset into its element.
enum class PresetHead
{
    Whole,   // "pkgurl", "label" and "description"
    Embedded // "description" alone: the document around it says the rest
};

// Writes the `vlrpreset` element. Paths of images are written relative to `directory`.
void writePreset(QXmlStreamWriter& xml, const PresetDescription& preset, const QDir& directory,
                 PresetHead head = PresetHead::Whole);

// The bytes of a preset file that lies in `directory`. The same presets always give the same bytes.
QByteArray presetDocument(const QVector<PresetDescription>& presets, const QDir& directory,
                          const QString& formatVersion = QStringLiteral("1.1"));

// The presets of a .vlrprs file, each with the path as its fileName; or nothing, and the reason, for a file
// that can't be read or is no such document.
std::optional<QVector<PresetDescription>> readPresetFile(const QString& path, const InputLookUp& inputs,
                                                         QString& reason);

// Writes a preset file, which takes the place of one there only when all of it is written. Returns an empty
// text, or what went wrong.
QString writePresetFile(const QString& path, const QVector<PresetDescription>& presets);

} // namespace Zph::Applications::Player
