#include "applications/tool/packingoption.h"

#include "applications/player/packing/packingtemplatefile.h"
#include "applications/player/packing/packingtemplates.h"
#include "applications/tool/failure.h"
#include "applications/tool/package.h"
#include "applications/tool/rendersettings.h"
#include "applications/tool/selection.h"

#include <cstdio>

namespace vellor::tool {

using namespace Zph::Applications::Player;

namespace {

/// An option that nothing is left for would be passed over in silence.
void checkIsOpen(const Arguments& arguments, const char* option, bool isOpen)
{
    if (arguments.has(option) && !isOpen)
        throw UsageError(std::string(option) + ": the template says that of each of its files");
}

/// Fills in what the template leaves open.
void complete(const Arguments& arguments, RenderSettings& settings)
{
    PackingPlan& plan = settings.files.packing;
    checkIsOpen(arguments, "--format", plan.leavesFormat());
    checkIsOpen(arguments, "--depth", plan.leavesDepth());
    const QString error = plan.settle(settings.files.picture.format, settings.files.picture.depth);
    if (!error.isEmpty())
        throw UsageError(error.toStdString());
    if (settings.files.pattern.isEmpty())
        settings.files.pattern = plan.pattern;
}

} // namespace

const Option kTemplate{
    "--template", nullptr, "TEMPLATE",
    "packs channels of outputs into files as a template says, one of \"vellor templates\" or "
    "a .json file; --output then says which outputs it may take"};

PackingTemplate findTemplate(const QString& nameOrFile)
{
    if (nameOrFile.endsWith(".json", Qt::CaseInsensitive)) {
        QString reason;
        const auto content = readPackingTemplate(nameOrFile, reason);
        if (!content)
            throw Failure(UnreadableFile, nameOrFile + ": " + reason);
        return *content;
    }
    const PackingTemplates templates;
    const PackingTemplates::Entry* entry = templates.find(nameOrFile);
    if (!entry)
        throw UsageError("there is no template '" + nameOrFile.toStdString() + "'; there are " +
                         templates.names().join(", ").toStdString());
    if (!entry->content)
        throw Failure(UnreadableFile, entry->file + ": " + entry->error);
    return *entry->content;
}

void applyTemplate(const Arguments& arguments, const Package& package, Selection& selection,
                   RenderSettings& settings)
{
    if (!arguments.has("--template"))
        return;
    const QString name = QString::fromStdString(arguments.value("--template"));
    settings.files.packing =
        planPacking(findTemplate(name), package.model(), selection.outputs,
                    [&](const PackageInput& input) { return selection.values.valueOf(input); });
    if (settings.files.packing.files.isEmpty())
        throw UsageError("--template: the package has none of the outputs that '" + name.toStdString() +
                         "' is made of");
    complete(arguments, settings);
    selection.outputs = settings.files.packing.outputs();
    for (const QString& note : qAsConst(settings.files.packing.notes))
        std::fprintf(stderr, "vellor: note: %s\n", qUtf8Printable(note));
}

} // namespace vellor::tool
