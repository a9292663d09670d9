#include "applications/player/tweaks/tweakvisibility.h"

#include "applications/player/description/visibility.h"
#include "applications/player/tweaks/rollbase.h"
#include "applications/player/tweaks/tweakbase.h"

#include <QHash>
#include <QVBoxLayout>

#include <set>

namespace Zph::Applications::Player {

namespace {

// The contexts of the graphs, each made when the first condition of its graph is met.
class GraphContexts
{
public:
    explicit GraphContexts(const std::map<quint32, TweakBase*>& tweaks) : m_tweaks(tweaks) {}

    const EvaluationContext& of(const QString& pkgurl)
    {
        auto found = m_contexts.find(pkgurl);
        if (found == m_contexts.end())
            found = m_contexts.insert(pkgurl, make(pkgurl));
        return *found;
    }

private:
    EvaluationContext make(const QString& pkgurl) const
    {
        QVariantHash inputs;
        inputs.reserve(int(m_tweaks.size()));
        for (const auto& entry : m_tweaks)
            if (entry.second->pkgurl() == pkgurl)
                enterInput(inputs, *entry.second, entry.second->widgetKind() == WidgetCode::Toggle);
        return visibilityContext(inputs);
    }

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
        if (shown == !roll->isHidden())
            continue;
        roll->setVisible(shown);
        if (RollBase* parent = rollAround(roll))
            rolls.insert(parent);
    }
}

} // namespace Zph::Applications::Player
