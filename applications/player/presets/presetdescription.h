#pragma once

#include "applications/player/description/descriptionindex.h"
#include "applications/player/description/inputvalue.h"
#include "applications/player/output/exportsettings.h"

#include <QDir>
#include <QVector>

#include <functional>
#include <optional>

namespace Zph::Applications::Player {

class Input;

// One input of a preset.
struct PresetInput
{
    QString identifier;
    quint32 uid = 0;
    quint32 type = 0;
    InputValue value;
    QString text; // the absolute path of an image, or the characters of a text
};

// A named set of values for the inputs of one graph.
struct PresetDescription
{
    QString fileName; // empty for a preset of the package itself
    QString label;
    QString pkgurl; // the key of the graph that it was made for
    QString description;
    QVector<PresetInput> inputs; // in the order of the file
    std::optional<ExportSettings> exportOptions;

    // The entry for an input: by identifier where the input has one, else by uid; the first match, or null.
    const PresetInput* find(const Input& input) const;
    // The entry that an input takes its value from: that of find(), if it has the type of the input. Null for
    // an input that goes back to its default, or stays as it is where it is an image.
    const PresetInput* valueFor(const Input& input) const;
    // Whether an entry has the identifier of an input: one such input, and the preset suits another graph
    // too.
    bool names(const Input& input) const;
};

// Gives the input with a uid, or null: what an entry that leaves out its type or identifier takes them from.
using InputLookUp = std::function<const Input*(quint32 uid)>;

// Reads the `vlrpreset` children of an element. Whatever can't be read is 0 or empty. Paths of images are
// resolved against `directory`.
QVector<PresetDescription> readPresets(const QDomElement& parent, const QDir& directory,
                                       const InputLookUp& inputs);

// The presets that the graphs of a package carry, in the order of the description. One without a graph key
// has that of the graph where it stands.
QVector<PresetDescription> readInternalPresets(const DescriptionIndex& description, const QDir& directory,
                                               const InputLookUp& inputs);

} // namespace Zph::Applications::Player
