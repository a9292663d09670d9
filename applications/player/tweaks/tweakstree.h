#pragma once

#include "applications/player/description/packagemodel.h"
#include "applications/player/tweaks/tweakcontext.h"

#include <QHash>

#include <functional>
#include <map>

class QVBoxLayout;
class QWidget;

namespace Zph::Applications::Player {

class RollBase;
class RollGraph;
class TweakBase;

// The rows and rolls of a package. The widgets belong to their Qt parents.
struct TweaksTree
{
    std::map<quint32, TweakBase*> tweaks; // by engine uid
    std::map<QString, RollGraph*> rollsByGraph;
    QHash<const TweakBase*, QString> graphOfTweak; // its graph key

    // The rows of one graph, by uid.
    std::map<quint32, TweakBase*> tweaksOfGraph(const QString& key) const;
};

// Makes the rows of every input that can be edited, in the order that the description asks for, inside rolls
// for graphs and groups. The first graph is open, the others folded; groups are as the description says.
class TweaksTreeBuilder
{
public:
    // The widgets go into `top`, the layout of `parent`. `made` sees each row ahead of its description.
    TweaksTreeBuilder(const PackageModel& package, const TweakContext& context, QVBoxLayout* top,
                      QWidget* parent, std::function<void(TweakBase*)> made);

    TweaksTree build();

private:
    void addInput(const PackageInput& input);
    RollGraph* graphRoll(const QString& graphKey);
    // The innermost roll of a path; `graph` where the path is empty. No graph is the panel itself.
    RollBase* groupRoll(RollBase* graph, const QString& graphKey, const QString& path);
    RollBase* makeGroupRoll(RollBase* parent, const QString& name, const QString& groupKey);

    const PackageModel& m_package;
    TweakContext m_context;
    QVBoxLayout* m_top;
    QWidget* m_parent;
    std::function<void(TweakBase*)> m_made;
    QHash<QString, RollBase*> m_groupRolls; // by group key
    TweaksTree m_tree;
};

} // namespace Zph::Applications::Player
