#include "applications/player/packing/packingtemplates.h"
#include "applications/tool/failure.h"
#include "applications/tool/packingoption.h"
#include "applications/tool/sharedoptions.h"
#include "applications/tool/texttable.h"
#include "orncommon/image/codec/defaultcodecs.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <cstdio>

namespace vellor::tool {

namespace {

using namespace Zph::Applications::Player;

/// "1 - roughness.r, else 0.5".
QString text(const PackingChannel& channel)
{
    static const char* const parts[] = {"", ".r", ".g", ".b", ".a", ".luminance"};
    QStringList words;
    for (const PackingSource& source : channel.sources)
        words.append((source.isInverted ? "1 - " : "") +
                     (source.usage.isEmpty() ? "output " + source.identifier : source.usage) +
                     parts[int(source.channel)]);
    if (channel.constant)
        words.append(QString::number(*channel.constant));
    return words.join(", else ");
}

QString text(const PackingTemplate& content)
{
    static const char* const normals[] = {"as the package has them", "green up (OpenGL)",
                                          "green down (DirectX)"};
    TextTable table({"FILE", "FORMAT", "DEPTH", "CHANNEL", "HOLDS"});
    for (const PackingFile& file : content.files) {
        for (int i = 0; i < file.channels.size(); ++i) {
            const QStringList head{file.name, file.format.isEmpty() ? "any" : file.format,
                                   file.depth == PictureDepth::OfPicture ? "any" : depthName(file.depth)};
            table.addRow((i == 0 ? head : QStringList{"", "", ""}) +
                         QStringList{packingTargetName(file.channels[i].target), text(file.channels[i])});
        }
    }
    return (content.description.isEmpty() ? QString() : content.description + '\n') +
           "normals: " + normals[int(content.normals)] + '\n' + table.text();
}

int list()
{
    const PackingTemplates templates;
    TextTable table({"NAME", "LABEL", "FROM"});
    int code = Done;
    for (const PackingTemplates::Entry& entry : templates.entries()) {
        if (entry.content) {
            table.addRow({entry.name, entry.content->label, entry.isShipped ? "vellor" : entry.file});
            continue;
        }
        std::fprintf(stderr, "vellor: %s: %s\n", qUtf8Printable(entry.file), qUtf8Printable(entry.error));
        code = UnreadableFile;
    }
    return std::max<int>(printOut(table.text().toUtf8()), code);
}

int runTemplates(const Arguments& arguments)
{
    Orn::Image::Codec::registerDefaultCodecs(Orn::Image::Codec::SurfaceCodecManager::instance());
    return arguments.files.empty() ? list() : printOut(text(findTemplate(onlyFile(arguments))).toUtf8());
}

} // namespace

const Command templatesCommand{
    "templates",
    "[TEMPLATE]",
    "Lists the templates for packing, those of the user's folder too. With a name or a .json file, tells "
    "which files that one makes of which outputs.",
    {},
    runTemplates};

} // namespace vellor::tool
