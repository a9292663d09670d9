#include "applications/player/tweaks/tweakstree.h"

#include "applications/player/description/inputdetails.h"
#include "applications/player/description/inputorder.h"
#include "applications/player/tweaks/rollgraph.h"
#include "applications/player/tweaks/rollgroup.h"
#include "applications/player/tweaks/tweakbase.h"
#include "applications/player/tweaks/tweakkind.h"

#include <QVBoxLayout>

namespace Zph::Applications::Player {

namespace {

constexpr int groupIndent = 20;
// A path that goes deeper is no grouping that anyone could use, and widgets nest on the stack.
constexpr int deepestGroup = 16;

QString composedToolTip(const QString& graphKey, const QString& description)
{
    return description.isEmpty() ? graphKey : graphKey + QLatin1String("\n\n") + description;
}

} // namespace

std::map<quint32, TweakBase*> TweaksTree::tweaksOfGraph(const QString& key) const
{
    std::map<quint32, TweakBase*> found;
    for (const auto& [uid, tweak] : tweaks)
        if (graphOfTweak.value(tweak) == key)
            found.emplace(uid, tweak);
    return found;
}

TweaksTreeBuilder::TweaksTreeBuilder(const PackageModel& package, const TweakContext& context,
                                     QVBoxLayout* top, QWidget* parent, std::function<void(TweakBase*)> made)
    : m_package(package), m_context(context), m_top(top), m_parent(parent), m_made(std::move(made))
{
}

TweaksTree TweaksTreeBuilder::build()
{
    std::multimap<QString, const PackageInput*> sorted;
    for (const PackageInput& input : m_package.inputs())
        sorted.emplace(inputSortKey(m_package.description(), {input.element, input.graphKey}, input.uid),
                       &input);
    for (const auto& entry : sorted)
        addInput(*entry.second);
    return std::move(m_tree);
}

void TweaksTreeBuilder::addInput(const PackageInput& input)
{
    const WidgetCode code = widgetCodeOfInput(input.element);
    if (tweakKindFor(input.type, code) == TweakKind::None || m_tree.tweaks.count(input.uid) != 0)
        return;
    const QDomElement gui = input.element.firstChildElement(QStringLiteral("inputgui"));
    RollBase* graph = input.graphKey == DescriptionIndex::globalKey() ? nullptr : graphRoll(input.graphKey);
    RollBase* roll = groupRoll(graph, input.graphKey, gui.attribute(QStringLiteral("group")));
    QVBoxLayout* layout = roll ? roll->bodyLayout() : m_top;
    QWidget* parent = roll ? roll->bodyFrame() : m_parent;
    TweakBase* tweak = makeTweak(input.type, code, m_context, parent);
    m_tree.tweaks.emplace(input.uid, tweak);
    m_tree.graphOfTweak.insert(tweak, input.graphKey);
    m_made(tweak);
    const InputValue value = panelDefault(input);
    tweak->initFromDescription(input.index, {input.uid, input.type, value.words.data()}, input.element);
    layout->addWidget(tweak);
}

RollGraph* TweaksTreeBuilder::graphRoll(const QString& graphKey)
{
    const auto known = m_tree.rollsByGraph.find(graphKey);
    if (known != m_tree.rollsByGraph.end())
        return known->second;
    const QDomElement graph = m_package.description().graph(graphKey);
    auto* roll =
        new RollGraph(graph.attribute(QStringLiteral("label")),
                      composedToolTip(graphKey, graph.attribute(QStringLiteral("description"))), m_parent);
    if (!m_tree.rollsByGraph.empty())
        roll->unfold(false);
    m_top->addWidget(roll);
    m_tree.rollsByGraph.emplace(graphKey, roll);
    return roll;
}

RollBase* TweaksTreeBuilder::groupRoll(RollBase* graph, const QString& graphKey, const QString& path)
{
    RollBase* roll = graph;
    QString walked;
    for (const QString& part : path.split('/', Qt::SkipEmptyParts).mid(0, deepestGroup)) {
        walked += walked.isEmpty() ? part : '/' + part;
        const QString key = DescriptionIndex::groupKey(graphKey, walked);
        RollBase*& known = m_groupRolls[key];
        if (!known)
            known = makeGroupRoll(roll, part, key);
        roll = known;
    }
    return roll;
}

RollBase* TweaksTreeBuilder::makeGroupRoll(RollBase* parent, const QString& name, const QString& groupKey)
{
    const QDomElement group = m_package.description().group(groupKey);
    auto* roll = new RollGroup(name, group.attribute(QStringLiteral("description")),
                               parent ? parent->bodyFrame() : m_parent);
    roll->setIndent((parent ? parent->indent() : 0) + groupIndent);
    roll->unfold(group.attribute(QStringLiteral("defaultstate")) == QLatin1String("unfolded"));
    (parent ? parent->bodyLayout() : m_top)->addWidget(roll);
    return roll;
}

} // namespace Zph::Applications::Player
