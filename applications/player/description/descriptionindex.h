#pragma once

#include <QDomDocument>
#include <QHash>
#include <QMap>
#include <QString>
#include <QVector>

namespace Zph::Applications::Player {

// The children of `parent` with this tag, in document order; none for a null parent.
QVector<QDomElement> childElements(const QDomElement& parent, const QString& tag);

// Where one input or output is described: the element and the key of its graph.
struct DescribedItem
{
    QDomElement element;
    QString graphKey;
};

// A package description made ready for look-up by the numbers that the engine knows.
//
// It holds elements of the document it was made from, so it sees later changes of that document's attributes
// but not elements added or removed. Any document will do: what is missing is absent here, and a null one
// gives an empty index. Where two elements hold one uid the later one counts; one without a decimal uid
// doesn't.
class DescriptionIndex
{
public:
    // The key of the inputs that belong to no graph.
    static QString globalKey() { return QStringLiteral("_"); }
    static QString groupKey(const QString& graphKey, const QString& path) { return graphKey + '?' + path; }

    explicit DescriptionIndex(const QDomDocument& document = QDomDocument());

    // The first number of the document's dotted version; 1 when it has none.
    quint32 formatVersion() const { return m_formatVersion; }

    // The graphs in the order of the walk: `global` first, then as they stand. A document without `graphs`
    // is one graph itself, with an empty key.
    const QVector<DescribedItem>& graphs() const { return m_graphs; }

    // The element of the graph with this key, of the input or output with this uid, of the group under this
    // group key; a null element when there is none.
    QDomElement graph(const QString& key) const { return m_graphsByKey.value(key); }
    QDomElement group(const QString& groupKey) const { return m_groups.value(groupKey); }
    DescribedItem input(quint32 uid) const { return m_inputs.value(uid); }
    DescribedItem output(quint32 uid) const { return m_outputs.value(uid); }

private:
    void readGraphs(const QDomElement& root);
    void readContent(const DescribedItem& graph);

    quint32 m_formatVersion = 1;
    QVector<DescribedItem> m_graphs;
    QHash<QString, QDomElement> m_graphsByKey;
    QHash<QString, QDomElement> m_groups;
    QHash<quint32, DescribedItem> m_inputs;
    QHash<quint32, DescribedItem> m_outputs;
};

} // namespace Zph::Applications::Player
