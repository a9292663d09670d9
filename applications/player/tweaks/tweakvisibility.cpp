#include "applications/player/tweaks/tweakvisibility.h"

#include "applications/player/description/visibility.h"
#include "applications/player/tweaks/rollbase.h"
#include "applications/player/tweaks/tweakbase.h"

#include <QHash>
#include <QVBoxLayout>

namespace Zph::Applications::Player {

namespace {

template<class Predicate>
EvaluationContext makeContext(const std::map<quint32, TweakBase*>& tweaks, Predicate belongs)
{
    QVariantHash inputs;
    inputs.reserve(int(tweaks.size()));
    for (const auto& entry : tweaks)
        if (belongs(entry.second))
            enterInput(inputs, *entry.second, entry.second->widgetKind() == WidgetCode::Toggle);
    return visibilityContext(inputs);
}

// The contexts of the graphs, each made when the first condition of its graph is met.
class GraphContexts
{
public:
    explicit GraphContexts(const std::map<quint32, TweakBase*>& tweaks) : m_tweaks(tweaks) {}

    const EvaluationContext& of(const QString& pkgurl)
    {
        auto found = m_contexts.find(pkgurl);
        if (found == m_contexts.end())
            found = m_contexts.insert(pkgurl, makeContext(m_tweaks, [&](const TweakBase* tweak) {
                                          return tweak->pkgurl() == pkgurl;
                                      }));
        return *found;
    }

private:
    const std::map<quint32, TweakBase*>& m_tweaks;
    QHash<QString, EvaluationContext> m_contexts;
};

RollBase* rollAround(const QWidget* widget)
{
    for (QWidget* parent = widget->parentWidget(); parent; parent = parent->parentWidget())
        if (auto* roll = qobject_cast<RollBase*>(parent))
            return roll;
    return nullptr;
}

// Brings the rows of a roll in line with their answers. True when anything in the roll is shown.
bool updateRows(RollBase* roll)
{
    bool anyShown = false;
    for (int i = 0; i < roll->bodyLayout()->count(); ++i) {
        QWidget* child = roll->bodyLayout()->itemAt(i)->widget();
        if (auto* tweak = qobject_cast<TweakBase*>(child)) {
            tweak->setVisible(tweak->isShown());
            anyShown |= tweak->isShown();
        } else if (child) {
            anyShown |= !child->isHidden();
        }
    }
    return anyShown;
}

} // namespace

void evaluateVisibility(const std::map<quint32, TweakBase*>& tweaks)
{
    GraphContexts contexts(tweaks);
    std::set<RollBase*> rolls;
    for (const auto& entry : tweaks) {
        TweakBase* tweak = entry.second;
        if (tweak->visibleIf().isEmpty())
            continue;
        const bool shown = isVisible(contexts.of(tweak->pkgurl()), tweak->visibleIf());
        if (shown == tweak->isShown())
            continue;
        tweak->setShown(shown);
        if (RollBase* roll = rollAround(tweak))
            rolls.insert(roll);
        else
            tweak->setVisible(shown);
    }
    while (!rolls.empty()) {
        RollBase* roll = *rolls.begin();
        rolls.erase(rolls.begin());
        const bool shown = updateRows(roll);
        const bool changed = shown == roll->isHidden();
        // Said even where nothing changes: a roll that is new in a panel on screen is hidden, and would be
        // shown by its layout.
        roll->setVisible(shown);
        RollBase* parent = changed ? rollAround(roll) : nullptr;
        if (parent)
            rolls.insert(parent);
    }
}

std::set<quint32> hiddenOutputs(const QVector<PackageOutput>& outputs, const TweaksTree& tree)
{
    std::map<QString, EvaluationContext> contexts;
    std::set<quint32> hidden;
    for (const PackageOutput& output : outputs) {
        if (output.visibleIf.isEmpty())
            continue;
        auto context = contexts.find(output.graphKey);
        if (context == contexts.end())
            context = contexts
                          .emplace(output.graphKey, makeContext(tree.tweaks,
                                                                [&](const TweakBase* tweak) {
                                                                    return tree.graphOfTweak.value(tweak) ==
                                                                           output.graphKey;
                                                                }))
                          .first;
        if (!isVisible(context->second, output.visibleIf))
            hidden.insert(output.uid);
    }
    return hidden;
}

} // namespace Zph::Applications::Player
