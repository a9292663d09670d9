#include "applications/player/description/inputorder.h"

namespace Zph::Applications::Player {

namespace {

QString padded(const QString& order)
{
    return order.rightJustified(8, QLatin1Char('0'));
}

QString groupOrder(const DescriptionIndex& description, const QString& graphKey, const QString& path)
{
    if (path.isEmpty())
        return QString();
    const QDomElement group = description.group(DescriptionIndex::groupKey(graphKey, path));
    const QString order = QStringLiteral("order");
    return group.hasAttribute(order) ? padded(group.attribute(order)) : QString();
}

} // namespace

QString inputSortKey(const DescriptionIndex& description, const DescribedItem& input, quint32 uid)
{
    if (input.element.isNull())
        return QString::number(uid);
    const QDomElement gui = input.element.firstChildElement(QStringLiteral("inputgui"));
    const QString key =
        input.graphKey + groupOrder(description, input.graphKey, gui.attribute(QStringLiteral("group")));
    const QString identifier = input.element.attribute(QStringLiteral("identifier"));
    if (identifier.startsWith('$'))
        return key + identifier;
    const QString line = QString::number(input.element.lineNumber());
    return key + padded(gui.attribute(QStringLiteral("order"), line));
}

} // namespace Zph::Applications::Player
