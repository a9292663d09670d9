#include "applications/tool/presetoption.h"

#include "applications/player/presets/presetfile.h"
#include "applications/tool/failure.h"
#include "applications/tool/package.h"
#include "applications/tool/selection.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

namespace vellor::tool {

using namespace Zph::Applications::Player;

namespace {

/// "FILE.vlrprs:LABEL", with or without the label; or a label alone, and then there is no file.
struct PresetName
{
    QString file;
    QString label;

    explicit PresetName(const QString& text) : label(text)
    {
        static const QRegularExpression inFile(QStringLiteral("^(.*\\.vlrprs)(?::(.*))?$"),
                                               QRegularExpression::CaseInsensitiveOption |
                                                   QRegularExpression::DotMatchesEverythingOption);
        const QRegularExpressionMatch match = inFile.match(text);
        if (!match.hasMatch())
            return;
        file = match.captured(1);
        label = match.captured(2);
    }
};

using Presets = QVector<PresetDescription>;

Presets readFile(const QString& path, const InputValues& values)
{
    QString reason;
    const auto presets = readPresetFile(
        path, [&](quint32 uid) { return values.withUid(uid); }, reason);
    if (!presets)
        throw Failure(UnreadableFile, path + ": " + reason);
    return *presets;
}

QString labelsOf(const Presets& presets)
{
    QStringList labels;
    for (const PresetDescription& preset : presets)
        labels.append('\'' + preset.label + '\'');
    labels.removeDuplicates();
    return labels.isEmpty() ? "none" : labels.join(", ");
}

/// Those with a label; all for an empty one.
Presets withLabel(const Presets& presets, const QString& label)
{
    Presets found;
    std::copy_if(presets.begin(), presets.end(), std::back_inserter(found),
                 [&](const PresetDescription& preset) { return label.isEmpty() || preset.label == label; });
    return found;
}

bool applyToOwnGraphs(const Presets& presets, Selection& selection)
{
    bool isApplied = false;
    for (const QString& graph : qAsConst(selection.graphs)) {
        const auto own = std::find_if(presets.begin(), presets.end(), [&](const PresetDescription& preset) {
            return preset.pkgurl == graph;
        });
        if (own == presets.end())
            continue;
        selection.values.apply(*own, graph);
        selection.preset = own->label;
        isApplied = true;
    }
    return isApplied;
}

bool applyToCompatible(const PresetDescription& preset, Selection& selection)
{
    bool isApplied = false;
    for (const QString& graph : qAsConst(selection.graphs)) {
        if (!selection.values.isCompatible(preset, graph))
            continue;
        selection.values.apply(preset, graph);
        selection.preset = preset.label;
        isApplied = true;
    }
    return isApplied;
}

} // namespace

void applyPreset(const QString& option, const Package& package, Selection& selection)
{
    const PresetName name(option);
    const bool isInFile = !name.file.isEmpty();
    const Presets all = isInFile ? readFile(name.file, selection.values) : package.presets();
    const Presets fitting = withLabel(all, name.label);
    if (!fitting.isEmpty() && applyToOwnGraphs(fitting, selection))
        return;
    if (isInFile && !fitting.isEmpty() && applyToCompatible(fitting.first(), selection))
        return;
    const QString where = isInFile ? " in " + name.file : QString();
    const QString message =
        isInFile && !fitting.isEmpty()
            ? "no preset" + where + " is for an input of the package"
            : "there is no preset '" + name.label + "'" + where + "; there are " + labelsOf(all);
    throw UsageError(message.toStdString());
}

const Option kSavePreset{
    "--save-preset", nullptr, "FILE.vlrprs[:LABEL]",
    "writes the values that aren't defaults as a preset, into a new file or beside those "
    "of one; the label is the file's name by default"};

void savePreset(const QString& option, const Selection& selection)
{
    const PresetName name(option);
    if (name.file.isEmpty())
        throw UsageError("--save-preset: expected FILE.vlrprs or FILE.vlrprs:LABEL, not '" +
                         option.toStdString() + "'");
    Presets presets;
    if (QFileInfo::exists(name.file))
        presets = readFile(name.file, selection.values);
    bool isChanged = false;
    for (const QString& graph : selection.graphs) {
        PresetDescription preset = selection.values.collect(graph);
        if (preset.inputs.isEmpty())
            continue;
        preset.label = name.label.isEmpty() ? QFileInfo(name.file).completeBaseName() : name.label;
        const auto old = std::find_if(presets.begin(), presets.end(), [&](const PresetDescription& other) {
            return other.pkgurl == preset.pkgurl && other.label == preset.label;
        });
        if (old == presets.end())
            presets.append(preset);
        else
            old->inputs = preset.inputs;
        isChanged = true;
    }
    if (!isChanged)
        throw UsageError("--save-preset: all values are defaults, there is nothing to keep");
    const QString error = writePresetFile(name.file, presets);
    if (!error.isEmpty())
        throw Failure(Unwritable, name.file + ": " + error);
}

} // namespace vellor::tool
