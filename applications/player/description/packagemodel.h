#pragma once

#include "applications/player/description/alterationlinks.h"
#include "applications/player/description/descriptionindex.h"
#include "applications/player/description/inputvalue.h"

#include <vellor/engine.h>

#include <QStringList>
#include <QVector>

#include <vector>

namespace Zph::Applications::Player {

// What a loaded package is, as viewers and the cache see it: the engine's inputs and outputs, which are the
// truth about what exists, under the names that the description gives them. It needs no engine once it is
// made, and holds elements of the description's document.

struct PackageGraph
{
    QString key;   // unique; empty for outputs that no graph describes
    QString label; // never empty where the graph has a label, else the key
    QString description;
};

struct PackageOutput
{
    quint32 uid = 0;
    int index = 0; // the engine's
    quint32 type = 0;
    quint8 pixelFormat = 0;
    quint32 width = 0; // 0 where the size depends on inputs
    quint32 height = 0;
    QString graphKey;
    QString identifier;
    QStringList usages; // as written; the first is the main one
    QString label;      // short, for a tab: label, identifier, or index and uid
    QString listText;   // all that is known, for an output list entry
    QString description;
    QString visibleIf;
    bool boolean = false; // a number that means yes or no
};

struct PackageInput
{
    quint32 uid = 0;
    int index = 0; // the engine's
    quint32 type = 0;
    InputValue defaultValue;
    QDomElement element; // null when the description doesn't name it
    QString graphKey;
};

class PackageModel
{
public:
    enum class Origin
    {
        Local,
        Remote
    };

    PackageModel() = default;

    // `inputs` and `outputs` are the engine's records by index; their pointers are read now and not kept. In
    // a remote package the first four outputs have fixed names.
    PackageModel(const std::vector<VellorInputDesc>& inputs, const std::vector<VellorOutputDesc>& outputs,
                 const QDomDocument& description, Origin origin = Origin::Local);

    // The graphs that outputs belong to, in the order of the description, those without outputs included,
    // the global one not; last, under the empty key, the graph of outputs without a description, if any.
    const QVector<PackageGraph>& graphs() const { return m_graphs; }
    const QVector<PackageOutput>& outputs() const { return m_outputs; }
    const QVector<PackageInput>& inputs() const { return m_inputs; }
    const AlterationLinks& alterationLinks() const { return m_links; }
    const DescriptionIndex& description() const { return m_description; }

    QVector<PackageOutput> outputsOfGraph(const QString& key) const;

private:
    PackageInput makeInput(const VellorInputDesc& record, int index) const;
    PackageOutput makeOutput(const VellorOutputDesc& record, int index, Origin origin) const;
    void readGraphs();
    QString graphLabel(const QString& key) const;

    DescriptionIndex m_description;
    QVector<PackageGraph> m_graphs;
    QVector<PackageOutput> m_outputs;
    QVector<PackageInput> m_inputs;
    AlterationLinks m_links;
};

} // namespace Zph::Applications::Player
