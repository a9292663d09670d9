#include "applications/player/description/packagemodel.h"

#include "applications/player/description/outputlabel.h"
#include "applications/player/description/valuetype.h"

#include <algorithm>

namespace Zph::Applications::Player {

PackageModel::PackageModel(const std::vector<VellorInputDesc>& inputs,
                           const std::vector<VellorOutputDesc>& outputs, const QDomDocument& description,
                           Origin origin)
    : m_description(description), m_links(readAlterationLinks(description, inputs.size()))
{
    readGraphs();
    for (const VellorInputDesc& record : inputs)
        m_inputs.append(makeInput(record, m_inputs.size()));
    for (const VellorOutputDesc& record : outputs)
        m_outputs.append(makeOutput(record, m_outputs.size(), origin));
    const auto isKnown = [this](const PackageOutput& output) {
        return std::any_of(m_graphs.cbegin(), m_graphs.cend(),
                           [&](const PackageGraph& graph) { return graph.key == output.graphKey; });
    };
    if (!std::all_of(m_outputs.cbegin(), m_outputs.cend(), isKnown))
        m_graphs.append(PackageGraph());
}

QVector<PackageOutput> PackageModel::outputsOfGraph(const QString& key) const
{
    QVector<PackageOutput> outputs;
    std::copy_if(m_outputs.cbegin(), m_outputs.cend(), std::back_inserter(outputs),
                 [&](const PackageOutput& output) { return output.graphKey == key; });
    return outputs;
}

void PackageModel::readGraphs()
{
    for (const DescribedItem& graph : m_description.graphs()) {
        const auto sameKey = [&](const PackageGraph& known) { return known.key == graph.graphKey; };
        if (graph.graphKey == DescriptionIndex::globalKey() ||
            std::any_of(m_graphs.cbegin(), m_graphs.cend(), sameKey))
            continue;
        const QDomElement& element = graph.element;
        m_graphs.append({graph.graphKey, element.attribute(QStringLiteral("label"), graph.graphKey),
                         element.attribute(QStringLiteral("description"))});
    }
}

QString PackageModel::graphLabel(const QString& key) const
{
    for (const PackageGraph& graph : m_graphs)
        if (graph.key == key)
            return graph.label;
    return QString();
}

PackageInput PackageModel::makeInput(const VellorInputDesc& record, int index) const
{
    PackageInput input;
    input.uid = record.uid;
    input.index = index;
    input.type = record.type;
    if (record.defaultValue)
        std::memcpy(input.defaultValue.words.data(), record.defaultValue,
                    sizeof(quint32) * size_t(componentCount(record.type)));
    const DescribedItem described = m_description.input(record.uid);
    input.element = described.element;
    input.graphKey = described.graphKey;
    return input;
}

PackageOutput PackageModel::makeOutput(const VellorOutputDesc& record, int index, Origin origin) const
{
    PackageOutput output;
    output.uid = record.uid;
    output.index = index;
    output.type = record.type;
    output.pixelFormat = record.pixelFormat;
    output.width = record.width;
    output.height = record.height;
    if (origin == Origin::Remote && !remoteOutputName(index).isEmpty()) {
        output.label = output.listText = remoteOutputName(index);
        return output;
    }
    const DescribedItem described = m_description.output(record.uid);
    const QDomElement gui = described.element.firstChildElement(QStringLiteral("outputgui"));
    output.graphKey = described.graphKey;
    output.identifier = described.element.attribute(QStringLiteral("identifier"));
    output.usages = outputUsages(described.element);
    output.label = gui.attribute(QStringLiteral("label"));
    if (output.label.isEmpty())
        output.label = output.identifier;
    if (output.label.isEmpty())
        output.label = outputShortText(index, record.uid);
    output.listText = outputListText({graphLabel(output.graphKey), record, index, described.element});
    output.description = gui.attribute(QStringLiteral("description"));
    output.visibleIf = gui.attribute(QStringLiteral("visibleif"));
    output.boolean = gui.attribute(QStringLiteral("typegui")) == QLatin1String("boolean");
    return output;
}

} // namespace Zph::Applications::Player
