#include "applications/player/packing/packingplan.h"

#include "applications/player/description/outputlabel.h"
#include "applications/player/description/valuetype.h"

#include <QCoreApplication>

#include <algorithm>

namespace Zph::Applications::Player {

namespace {

QString translated(const char* text)
{
    return QCoreApplication::translate("PackingTemplate", text);
}

// "r", "a"...: the one channel of an output that has a usage, or none for a usage of several or all.
std::optional<SourceChannel> onlyChannel(const QDomElement& output, const QString& usage)
{
    const QDomElement channels = output.firstChildElement(QStringLiteral("channels"));
    for (const QDomElement& channel : childElements(channels, QStringLiteral("channel"))) {
        if (channel.attribute("names").compare(usage, Qt::CaseInsensitive) != 0)
            continue;
        const int index = QString("rgba").indexOf(channel.attribute("components"));
        if (channel.attribute("components").size() == 1 && index >= 0)
            return SourceChannel(int(SourceChannel::Red) + index);
    }
    return {};
}

QVector<SourceChannel> partsOf(PackingTarget target)
{
    return target == PackingTarget::Rgb
               ? QVector<SourceChannel>{SourceChannel::Red, SourceChannel::Green, SourceChannel::Blue}
               : QVector<SourceChannel>{SourceChannel::Luminance};
}

// Plans the files of one graph.
class GraphPlanner
{
public:
    GraphPlanner(const PackingTemplate& content, const PackageModel& package,
                 const QVector<PackageOutput>& outputs, const InputValueOf& valueOf, QStringList& notes)
        : m_content(content), m_package(package), m_outputs(outputs), m_valueOf(valueOf), m_notes(notes)
    {
    }

    PlannedFile plan(const PackingFile& file)
    {
        PlannedFile planned;
        planned.graphKey = m_outputs.first().graphKey;
        planned.name = file.name;
        planned.format = file.format;
        planned.depth = file.depth;
        planned.normals = m_content.normals;
        QStringList notes;
        for (const PackingChannel& channel : file.channels)
            add(channel, planned, notes);
        if (!planned.sources.isEmpty())
            m_notes += notes;
        return planned;
    }

private:
    void add(const PackingChannel& channel, PlannedFile& file, QStringList& notes)
    {
        for (const PackingSource& source : channel.sources) {
            const PackageOutput* output = find(source);
            if (!output)
                continue;
            SourceChannel taken = source.channel;
            if (taken == SourceChannel::Own)
                taken = onlyChannel(m_package.description().output(output->uid).element, source.usage)
                            .value_or(SourceChannel::Own);
            const int index = place(*output, file);
            for (const SourceChannel part : partsOf(channel.target))
                file.channels.append(
                    {index, taken == SourceChannel::Own ? part : taken, source.isInverted, 0.0f});
            return;
        }
        if (channel.target == PackingTarget::Alpha && !channel.constant)
            return;
        const float constant = float(channel.constant.value_or(0.0));
        for (int i = 0; i < partsOf(channel.target).size(); ++i)
            file.channels.append({-1, SourceChannel::Luminance, false, constant});
        if (isMissed(channel))
            notes.append(note(channel, file, constant));
    }

    const PackageOutput* find(const PackingSource& source) const
    {
        const auto found =
            std::find_if(m_outputs.cbegin(), m_outputs.cend(), [&](const PackageOutput& output) {
                return source.usage.isEmpty() ? output.identifier == source.identifier
                                              : output.usages.contains(source.usage, Qt::CaseInsensitive);
            });
        return found == m_outputs.cend() ? nullptr : &*found;
    }

    int place(const PackageOutput& output, PlannedFile& file) const
    {
        for (int i = 0; i < file.sources.size(); ++i) {
            if (file.sources.at(i).output.uid == output.uid)
                return i;
        }
        file.sources.append(
            {output, holdsNormals(output) ? normalFormatOf(output, m_package, m_valueOf) : -1});
        return file.sources.size() - 1;
    }

    // Whether people would expect an output there.
    static bool isMissed(const PackingChannel& channel)
    {
        return std::any_of(channel.sources.cbegin(), channel.sources.cend(),
                           [](const PackingSource& source) { return !source.isOptional; });
    }

    static QString note(const PackingChannel& channel, const PlannedFile& file, float constant)
    {
        QStringList names;
        for (const PackingSource& source : channel.sources)
            names.append(source.usage.isEmpty() ? source.identifier : source.usage);
        return translated("%1 has no output %2, so %3 of %4 is %5 everywhere")
            .arg(file.graphKey, names.join(translated(" or ")), packingTargetName(channel.target), file.name)
            .arg(double(constant));
    }

    const PackingTemplate& m_content;
    const PackageModel& m_package;
    QVector<PackageOutput> m_outputs; // pictures of one graph
    const InputValueOf& m_valueOf;
    QStringList& m_notes;
};

} // namespace

QVector<PackageOutput> PackingPlan::outputs() const
{
    QVector<PackageOutput> needed;
    for (const PlannedFile& file : files) {
        for (const PlannedSource& source : file.sources) {
            const quint32 uid = source.output.uid;
            if (std::none_of(needed.cbegin(), needed.cend(),
                             [uid](const PackageOutput& output) { return output.uid == uid; }))
                needed.append(source.output);
        }
    }
    std::sort(needed.begin(), needed.end(),
              [](const PackageOutput& a, const PackageOutput& b) { return a.index < b.index; });
    return needed;
}

bool PackingPlan::leavesFormat() const
{
    return std::any_of(files.cbegin(), files.cend(),
                       [](const PlannedFile& file) { return file.format.isEmpty(); });
}

bool PackingPlan::leavesDepth() const
{
    return std::any_of(files.cbegin(), files.cend(),
                       [](const PlannedFile& file) { return file.depth == PictureDepth::OfPicture; });
}

QString PackingPlan::settle(const QString& format, PictureDepth depth)
{
    for (PlannedFile& file : files) {
        if (file.format.isEmpty())
            file.format = format;
        if (file.depth == PictureDepth::OfPicture)
            file.depth = depth;
        if (file.hasAlpha() && !holdsAlpha(file.format))
            return translated(
                       "%1: files of the format %2 hold no alpha, and the template puts something there")
                .arg(file.name, file.format);
        if (file.depth != PictureDepth::OfPicture && !depthsOf(file.format).contains(file.depth))
            return translated("%1: files of the format %2 can't hold the depth %3")
                .arg(file.name, file.format, depthName(file.depth));
    }
    return {};
}

BaseNameSource packedBaseNameSource(const PlannedFile& file, const PackageModel& package,
                                    const QString& preset)
{
    const PackageOutput& output = file.mainOutput();
    const QString usage = outputUsageText(package.description().output(output.uid).element);
    BaseNameSource source = baseNameSource(exportLabel(output), output.uid, usage, preset);
    source.name = file.name;
    return source;
}

PackingPlan planPacking(const PackingTemplate& content, const PackageModel& package,
                        const QVector<PackageOutput>& outputs, const InputValueOf& valueOf)
{
    PackingPlan plan{content.pattern, {}, {}};
    for (const PackageGraph& graph : package.graphs()) {
        QVector<PackageOutput> pictures;
        std::copy_if(outputs.cbegin(), outputs.cend(), std::back_inserter(pictures),
                     [&](const PackageOutput& output) {
                         return output.graphKey == graph.key && componentCount(output.type) == 0;
                     });
        if (pictures.isEmpty())
            continue;
        GraphPlanner planner(content, package, pictures, valueOf, plan.notes);
        for (const PackingFile& file : content.files) {
            const PlannedFile planned = planner.plan(file);
            if (!planned.sources.isEmpty())
                plan.files.append(planned);
        }
    }
    return plan;
}

} // namespace Zph::Applications::Player
