#include "applications/player/output/basename.h"

#include <QRegularExpression>
#include <QSet>

#include <algorithm>

namespace Zph::Applications::Player {

namespace {

const QString separator = QStringLiteral(" - ");
const QString scheme = QStringLiteral("pkg://");

QString pathOf(QString url)
{
    return url.remove(' ').remove(scheme);
}

// "'Base Color' (id:basecolor)" without the identifier and the quotes.
QString nameOf(QString text)
{
    const int identifier = text.indexOf(QLatin1String("(id:"));
    if (identifier < 0)
        return text;
    text = text.left(identifier).trimmed();
    if (text.startsWith('\''))
        text.remove(0, 1);
    if (text.endsWith('\''))
        text.chop(1);
    return text;
}

QString uidText(quint32 uid)
{
    return QStringLiteral("%1").arg(uid, 8, 16, QLatin1Char('0')).toUpper();
}

QString withTokens(QString text, const BaseNameSource& source)
{
    return text.replace(QLatin1String("%F"), source.path)
        .replace(QLatin1String("%G"), source.path.section('/', -1))
        .replace(QLatin1String("%P"), source.path.section('/', 0, 0))
        .replace(QLatin1String("%O"), source.name)
        .replace(QLatin1String("%I"), uidText(source.uid))
        .replace(QLatin1String("%U"), source.usage.section('|', -1))
        .replace(QLatin1String("%R"), source.preset);
}

QString withFrame(QString text, int frame)
{
    if (!text.contains('#'))
        text += QLatin1String("_####");
    const int digits = text.count('#');
    const QString number = QString::number(std::max(frame, 0)).rightJustified(digits, '0');
    return text.replace(text.indexOf('#'), 1, number);
}

} // namespace

QString exportLabel(const PackageOutput& output)
{
    const bool hasLabel = !output.identifier.isEmpty() && output.label != output.identifier;
    const QString name = hasLabel ? '\'' + output.label + "' (id:" + output.identifier + ')' : output.label;
    return output.graphKey + separator + name;
}

BaseNameSource baseNameSource(const QString& label, quint32 uid, const QString& usage, const QString& preset)
{
    return {pathOf(label.section(separator, 0, 0)), nameOf(label.section(separator, 1)), uid, usage, preset};
}

QString defaultBaseNamePattern(const PackageModel& package, bool animation)
{
    QSet<QString> paths;
    for (const PackageGraph& graph : package.graphs())
        paths.insert(pathOf(graph.key).section('/', 0, 0));
    return QLatin1String(paths.size() > 1 ? "%F_%O" : "%G_%O") + QLatin1String(animation ? "_####" : "");
}

QString baseName(const QString& pattern, const BaseNameSource& source, std::optional<int> frame)
{
    QString text = withTokens(pattern, source);
    if (frame)
        text = withFrame(text, *frame);
    static const QRegularExpression counters(QStringLiteral("_?#"));
    static const QRegularExpression strange(QStringLiteral("[^a-zA-Z0-9]"));
    text.remove(counters).replace(strange, QStringLiteral("_"));
    return text.isEmpty() ? uidText(source.uid) : text;
}

BaseNames::BaseNames(const QString& pattern, const QString& standard)
    : m_pattern(pattern.trimmed().isEmpty() ? standard : pattern.trimmed())
{
}

QString BaseNames::next(const BaseNameSource& source, std::optional<int> frame)
{
    const QString name = baseName(m_pattern, source, frame);
    const int count = ++m_counts[name];
    return count == 1 ? name : QStringLiteral("%1[%2]").arg(name).arg(count);
}

} // namespace Zph::Applications::Player
