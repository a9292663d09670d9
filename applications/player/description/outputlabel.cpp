#include "applications/player/description/outputlabel.h"

#include "applications/player/description/descriptionindex.h"
#include "applications/player/description/outputformatname.h"
#include "applications/player/description/valuetype.h"

#include <QCoreApplication>

namespace Zph::Applications::Player {

namespace {

QString translated(const char* text)
{
    return QCoreApplication::translate("OutputLabel", text);
}

QVector<QDomElement> channelsOf(const QDomElement& output)
{
    return childElements(output.firstChildElement(QStringLiteral("channels")), QStringLiteral("channel"));
}

QString sizeText(const VellorOutputDesc& record)
{
    if (record.type != ValueType::Image)
        return translated("<Numeric>");
    if (record.width == 0 || record.height == 0)
        return translated("<Dynamic size>");
    return QStringLiteral("%1x%2").arg(record.width).arg(record.height);
}

QString formatText(const VellorOutputDesc& record)
{
    return record.type == ValueType::Image ? outputFormatName(record.pixelFormat)
                                           : valueTypeName(record.type);
}

// In one go, so that a "%1" inside a name is not taken for a place to fill.
QString describedText(const QDomElement& output)
{
    const QString tag = output.attribute(QStringLiteral("usertag"));
    const QString usage = outputUsageText(output);
    const QDomElement gui = output.firstChildElement(QStringLiteral("outputgui"));
    const QString label = gui.attribute(QStringLiteral("label"));
    const QString identifier = output.attribute(QStringLiteral("identifier"));
    const QString description = gui.attribute(QStringLiteral("description"));

    QString text;
    if (!tag.isEmpty())
        text += QStringLiteral(" - tag:'%1'").arg(tag);
    if (!usage.isEmpty())
        text += QLatin1String(" - usage:") + usage;
    if (!label.isEmpty())
        text += QStringLiteral(" - '%1' (id:%2)").arg(label, identifier);
    else if (!identifier.isEmpty())
        text += QStringLiteral(" - %1").arg(identifier);
    if (!description.isEmpty())
        text += QStringLiteral(" - description:'%1'").arg(description);
    return text;
}

} // namespace

QStringList outputUsages(const QDomElement& output)
{
    QStringList usages;
    for (const QDomElement& channel : channelsOf(output))
        usages.append(channel.attribute(QStringLiteral("names")));
    usages.removeAll(QString());
    if (usages.isEmpty() && !output.attribute(QStringLiteral("usage")).isEmpty())
        usages.append(output.attribute(QStringLiteral("usage")));
    usages.removeDuplicates();
    return usages;
}

QString outputUsageText(const QDomElement& output)
{
    QStringList channels;
    QStringList names;
    for (const QDomElement& channel : channelsOf(output)) {
        const QString components = channel.attribute(QStringLiteral("components"));
        const QString name = channel.attribute(QStringLiteral("names"));
        names.append(name);
        channels.append(components == QLatin1String("all") ? name : components + ':' + name);
    }
    const QString usage = output.attribute(QStringLiteral("usage"));
    QString text = channels.join('|');
    if (!usage.isEmpty() && !names.contains(usage))
        text += '|' + usage;
    return text;
}

QString outputListText(const OutputLabelSource& source)
{
    const VellorOutputDesc& record = source.record;
    return QStringLiteral("%1^%2 [%3] - index:%4 uid:%5")
               .arg(source.graph, sizeText(record), formatText(record), QString::number(source.index),
                    QString::number(record.uid)) +
           describedText(source.element);
}

QString outputShortText(int index, quint32 uid)
{
    return QStringLiteral("index:%1 uid:%2").arg(index).arg(uid);
}

QString remoteOutputName(int index)
{
    switch (index) {
    case 0:
        return translated("0: Local image");
    case 1:
        return translated("1: Remote image");
    case 2:
        return translated("2: Absolute difference");
    case 3:
        return translated("3: Absolute difference (x64)");
    default:
        return QString();
    }
}

} // namespace Zph::Applications::Player
