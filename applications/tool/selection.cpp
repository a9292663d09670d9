#include "applications/tool/selection.h"

#include "applications/tool/identifiers.h"
#include "applications/tool/package.h"
#include "applications/tool/presetoption.h"
#include "applications/tool/sharedoptions.h"

#include <algorithm>

namespace vellor::tool {

using namespace Zph::Applications::Player;

namespace {

QStringList chosenGraphs(const PackageModel& model, const Arguments& arguments)
{
    QStringList keys;
    for (const PackageGraph& graph : model.graphs())
        keys.append(graph.key);
    if (!arguments.has("--graph"))
        return keys;
    const QString wanted = QString::fromStdString(arguments.value("--graph"));
    for (const QString& key : qAsConst(keys))
        if (key == wanted || key == "pkg://" + wanted)
            return {key};
    throw UsageError("there is no graph '" + wanted.toStdString() + "'; there are " +
                     keys.join(", ").toStdString());
}

QVector<PackageOutput> chosenOutputs(const PackageModel& model, const QStringList& graphs,
                                     const Arguments& arguments)
{
    QVector<PackageOutput> all;
    for (const PackageOutput& output : model.outputs())
        if (graphs.contains(output.graphKey))
            all.append(output);
    const QStringList wanted = allValues(arguments, "--output");
    QStringList names;
    for (const PackageOutput& output : qAsConst(all))
        names.append(idOf(output));
    for (const QString& name : wanted)
        if (!names.contains(name))
            throw UsageError("there is no output '" + name.toStdString() + "'; there are " +
                             names.join(", ").toStdString());
    if (wanted.isEmpty())
        return all;
    QVector<PackageOutput> chosen;
    std::copy_if(all.cbegin(), all.cend(), std::back_inserter(chosen),
                 [&](const PackageOutput& output) { return wanted.contains(idOf(output)); });
    return chosen;
}

} // namespace

const std::vector<Option>& selectionOptions()
{
    static const std::vector<Option> options{
        {"--graph", nullptr, "URL", "the graph to take; all of the package by default"},
        {"--output", nullptr, "ID", "an output to compute; may be repeated; all by default"},
        {"--set", nullptr, "ID=VALUE",
         "the value of an input: numbers with ',' between them, #rrggbb, a choice by number or label, a "
         "text, the "
         "path of a picture; may be repeated"},
        {"--image", nullptr, "ID=FILE",
         "the picture of an input; with --frames, one whose name ends with a number is a sequence: its files "
         "follow the frames, and the first and last ones stay before and behind; may be repeated"},
        {"--preset", nullptr, "LABEL|FILE.vlrprs[:LABEL]",
         "a preset of the package or of a file, under the values of --set"},
        {"--size", nullptr, "WxH", "the size of pictures in pixels, powers of two: 1024 or 1024x512"},
        {"--seed", nullptr, "N", "the random seed"},
    };
    return options;
}

Selection readSelection(const Package& package, const Arguments& arguments,
                        std::optional<double> sequenceRate)
{
    const PackageModel& model = package.model();
    const QStringList graphs = chosenGraphs(model, arguments);
    Selection selection{
        chosenOutputs(model, graphs, arguments), InputValues(model, graphs, sequenceRate), graphs, {}};
    if (arguments.has("--preset"))
        applyPreset(QString::fromStdString(arguments.value("--preset")), package, selection);
    if (arguments.has("--size"))
        selection.values.setSize(QString::fromStdString(arguments.value("--size")));
    if (arguments.has("--seed"))
        selection.values.setSeed(QString::fromStdString(arguments.value("--seed")));
    for (const QString& assignment : allValues(arguments, "--set"))
        selection.values.assign(assignment);
    for (const QString& assignment : allValues(arguments, "--image"))
        selection.values.assignPicture(assignment);
    return selection;
}

} // namespace vellor::tool
