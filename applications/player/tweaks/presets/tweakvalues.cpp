#include "applications/player/tweaks/presets/tweakvalues.h"

#include "applications/player/tweaks/tweakimage.h"
#include "applications/player/tweaks/tweaktext.h"

#include <QPointer>

#include <algorithm>

namespace Zph::Applications::Player {

namespace {

QString textOf(const TweakBase& tweak)
{
    if (const auto* image = qobject_cast<const TweakImage*>(&tweak))
        return image->filePath();
    const auto* text = qobject_cast<const TweakText*>(&tweak);
    return text ? text->text() : QString();
}

void applyPicture(TweakImage& image, const PresetInput* entry)
{
    if (!entry || entry->text == image.filePath())
        return;
    if (entry->text.isEmpty())
        image.resetToDefault();
    else
        image.open(entry->text);
}

void applyEntry(TweakBase& tweak, const PresetInput* entry)
{
    if (auto* image = qobject_cast<TweakImage*>(&tweak))
        applyPicture(*image, entry);
    else if (!entry)
        tweak.resetToDefault();
    else if (auto* text = qobject_cast<TweakText*>(&tweak))
        text->setText(entry->text);
    else
        tweak.applyValue(entry->value);
}

} // namespace

QVector<PresetInput> collectValues(const Tweaks& tweaks, Collected what)
{
    QVector<PresetInput> entries;
    for (const auto& [uid, tweak] : tweaks)
        if (what == Collected::All || !tweak->isDefault())
            entries.append({tweak->identifier(), uid, tweak->type(), tweak->value(), textOf(*tweak)});
    return entries;
}

void applyValues(const Tweaks& tweaks, const PresetDescription& preset)
{
    std::vector<QPointer<TweakBase>> rows;
    for (const auto& entry : tweaks)
        rows.emplace_back(entry.second);
    for (const QPointer<TweakBase>& row : rows)
        if (row)
            applyEntry(*row, preset.valueFor(*row));
}

bool isCompatible(const PresetDescription& preset, const Tweaks& tweaks)
{
    return std::any_of(tweaks.begin(), tweaks.end(),
                       [&](const auto& entry) { return preset.names(*entry.second); });
}

bool isAnyChanged(const Tweaks& tweaks)
{
    return std::any_of(tweaks.begin(), tweaks.end(),
                       [](const auto& entry) { return !entry.second->isDefault(); });
}

} // namespace Zph::Applications::Player
