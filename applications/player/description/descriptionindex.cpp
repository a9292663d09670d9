#include "applications/player/description/descriptionindex.h"

namespace Zph::Applications::Player {

namespace {

quint32 majorVersion(const QString& dotted)
{
    return dotted.section('.', 0, 0).toUInt();
}

void enterByUid(QHash<quint32, DescribedItem>& items, const QVector<QDomElement>& elements,
                const QString& key)
{
    for (const QDomElement& element : elements) {
        bool valid = false;
        const quint32 uid = element.attribute(QStringLiteral("uid")).toUInt(&valid, 10);
        if (valid)
            items.insert(uid, {element, key});
    }
}

} // namespace

QVector<QDomElement> childElements(const QDomElement& parent, const QString& tag)
{
    QVector<QDomElement> children;
    for (QDomElement child = parent.firstChildElement(tag); !child.isNull();
         child = child.nextSiblingElement(tag))
        children.append(child);
    return children;
}

DescriptionIndex::DescriptionIndex(const QDomDocument& document)
{
    const QDomElement root = document.documentElement();
    if (root.isNull())
        return;
    m_formatVersion = majorVersion(root.attribute(QStringLiteral("formatversion"), QStringLiteral("1.0")));
    readGraphs(root);
    for (const DescribedItem& graph : qAsConst(m_graphs))
        readContent(graph);
}

void DescriptionIndex::readGraphs(const QDomElement& root)
{
    const QDomElement list = root.firstChildElement(QStringLiteral("graphs"));
    if (list.isNull()) {
        m_graphs.append({root, QString()});
        return;
    }
    const QDomElement global = root.firstChildElement(QStringLiteral("global"));
    if (!global.isNull())
        m_graphs.append({global, globalKey()});
    for (const QDomElement& graph : childElements(list, QStringLiteral("graph")))
        m_graphs.append({graph, graph.attribute(QStringLiteral("pkgurl"))});
}

void DescriptionIndex::readContent(const DescribedItem& graph)
{
    const QDomElement& element = graph.element;
    m_graphsByKey.insert(graph.graphKey, element);
    const QDomElement groups = element.firstChildElement(QStringLiteral("guigroups"));
    for (const QDomElement& group : childElements(groups, QStringLiteral("guigroup")))
        m_groups.insert(groupKey(graph.graphKey, group.attribute(QStringLiteral("identifier"))), group);
    const QDomElement inputs = element.firstChildElement(QStringLiteral("inputs"));
    enterByUid(m_inputs, childElements(inputs, QStringLiteral("input")), graph.graphKey);
    const QDomElement outputs = element.firstChildElement(QStringLiteral("outputs"));
    enterByUid(m_outputs, childElements(outputs, QStringLiteral("output")), graph.graphKey);
}

} // namespace Zph::Applications::Player
