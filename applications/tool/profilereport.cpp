#include "applications/tool/profilereport.h"

#include "applications/tool/identifiers.h"
#include "applications/tool/texttable.h"

#include <QJsonArray>

#include <algorithm>
#include <map>

namespace vellor::tool {

using namespace Zph::Applications::Player;

namespace {

constexpr std::size_t kNamedFirst = 3; // steps that the first lines name

/// Work that was done, from the dearest on; steps that cost the same keep their order.
std::vector<ProfileStep> sortedSteps(const Profile& profile)
{
    std::vector<ProfileStep> steps = profile.steps;
    std::stable_sort(steps.begin(), steps.end(), [](const ProfileStep& a, const ProfileStep& b) {
        return a.record.seconds > b.record.seconds;
    });
    return steps;
}

double stepSeconds(const Profile& profile)
{
    double sum = 0.0;
    for (const ProfileStep& step : profile.steps)
        sum += step.record.seconds;
    return sum;
}

quint64 peakBytes(const Profile& profile)
{
    quint64 peak = 0;
    for (const ProfileStep& step : profile.steps)
        peak = std::max<quint64>(peak, step.record.liveBytes + step.record.scratchBytes);
    return peak;
}

/// How many steps each stage holds that did something.
std::map<quint32, int> stageSizes(const Profile& profile)
{
    std::map<quint32, int> sizes;
    for (const ProfileStep& step : profile.steps)
        sizes[step.record.stage] += step.record.cached ? 0 : 1;
    return sizes;
}

QString outputIdOf(const Profile& profile, quint32 uid)
{
    for (const Profile::Output& entry : profile.outputs)
        if (entry.output.uid == uid)
            return idOf(entry.output);
    return {};
}

QString nameOf(const ProfileStep& step)
{
    return step.name.isEmpty() ? '(' + step.kind + ')' : step.name;
}

QString milliseconds(double seconds)
{
    return QString::number(seconds * 1e3, 'f', 2);
}

QString percent(double part, double whole)
{
    return QString::number(whole > 0.0 ? 100.0 * part / whole : 0.0, 'f', 1) + " %";
}

QString megabytes(quint64 bytes)
{
    return QString::number(double(bytes) * 1e-6, 'f', 2);
}

QString headText(const Profile& profile, const std::vector<ProfileStep>& steps)
{
    QString text = QStringLiteral("%1: %2 ms for %3 output%4 with %5")
                       .arg(profile.file, milliseconds(profile.seconds))
                       .arg(profile.outputs.size())
                       .arg(profile.outputs.size() == 1 ? "" : "s", profile.engine);
    if (!profile.hasSteps)
        return text + "\nThe engine does not tell what its nodes cost.\n";
    text += QStringLiteral(", %1 MB of pictures at the peak\n").arg(megabytes(peakBytes(profile)));
    const double whole = stepSeconds(profile);
    QStringList dearest;
    double part = 0.0;
    for (std::size_t i = 0; i < std::min(kNamedFirst, steps.size()); ++i) {
        part += steps[i].record.seconds;
        dearest.append(QStringLiteral("%1 (%2, %3)")
                           .arg(nameOf(steps[i]), steps[i].kind, percent(steps[i].record.seconds, whole)));
    }
    if (!dearest.isEmpty())
        text += QStringLiteral("%1 of the time goes to %2\n").arg(percent(part, whole), dearest.join(", "));
    return text;
}

QString stepsText(const Profile& profile, const std::vector<ProfileStep>& steps)
{
    const double whole = stepSeconds(profile);
    const std::map<quint32, int> sizes = stageSizes(profile);
    TextTable table(
        {"MS", "SHARE", "CPU MS", "NODE", "KIND", "SIZE", "CHANNELS", "MB", "SCRATCH MB", "FUSED", "FOR"},
        {0, 1, 2, 6, 7, 8});
    for (const ProfileStep& step : steps) {
        const VellorProfileStep& record = step.record;
        const bool isFused = !record.cached && sizes.at(record.stage) > 1;
        table.addRow({record.cached ? "kept" : milliseconds(record.seconds), percent(record.seconds, whole),
                      milliseconds(record.processorSeconds), nameOf(step), step.kind,
                      QStringLiteral("%1x%2").arg(record.width).arg(record.height),
                      QString::number(record.channels), megabytes(record.resultBytes),
                      megabytes(record.scratchBytes),
                      isFused ? "stage " + QString::number(record.stage) : QString(),
                      outputIdOf(profile, record.outputUid)});
    }
    return '\n' + table.text();
}

/// What was done first for this output.
double secondsFor(const Profile& profile, const PackageOutput& output)
{
    double sum = 0.0;
    for (const ProfileStep& step : profile.steps)
        if (step.record.outputUid == output.uid)
            sum += step.record.seconds;
    return sum;
}

QString outputsText(const Profile& profile)
{
    TextTable table({"MS", "NODES MS", "OUTPUT"}, {0, 1});
    for (const Profile::Output& entry : profile.outputs)
        table.addRow({milliseconds(entry.seconds), milliseconds(secondsFor(profile, entry.output)),
                      pathOf(entry.output)});
    return '\n' + table.text();
}

QJsonObject stepJson(const Profile& profile, const ProfileStep& step)
{
    const VellorProfileStep& record = step.record;
    QJsonObject json{{"name", step.name},
                     {"kind", step.kind},
                     {"output", outputIdOf(profile, record.outputUid)},
                     {"stage", double(record.stage)},
                     {"size", QJsonArray{double(record.width), double(record.height)}},
                     {"channels", double(record.channels)},
                     {"cached", record.cached != 0},
                     {"seconds", record.seconds},
                     {"processorSeconds", record.processorSeconds},
                     {"resultBytes", double(record.resultBytes)},
                     {"scratchBytes", double(record.scratchBytes)},
                     {"liveBytes", double(record.liveBytes)}};
    if (record.node != VELLOR_PROFILE_NO_NODE)
        json.insert("node", double(record.node));
    return json;
}

} // namespace

QString profileText(const Profile& profile)
{
    const std::vector<ProfileStep> steps = sortedSteps(profile);
    return headText(profile, steps) + (steps.empty() ? QString() : stepsText(profile, steps)) +
           outputsText(profile);
}

QJsonObject profileJson(const Profile& profile)
{
    QJsonArray steps, outputs;
    for (const ProfileStep& step : sortedSteps(profile))
        steps.append(stepJson(profile, step));
    for (const Profile::Output& entry : profile.outputs)
        outputs.append(QJsonObject{{"graph", entry.output.graphKey},
                                   {"identifier", entry.output.identifier},
                                   {"uid", double(entry.output.uid)},
                                   {"seconds", entry.seconds},
                                   {"stepSeconds", secondsFor(profile, entry.output)}});
    QJsonObject json{{"file", profile.file},
                     {"engine", profile.engine},
                     {"seconds", profile.seconds},
                     {"outputs", outputs}};
    if (profile.hasSteps) {
        json.insert("peakBytes", double(peakBytes(profile)));
        json.insert("steps", steps);
    }
    return json;
}

} // namespace vellor::tool
