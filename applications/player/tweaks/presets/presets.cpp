#include "applications/player/tweaks/presets/presets.h"

#include "applications/player/output/exportsettingsholder.h"
#include "applications/player/tweaks/presets/presetsmenu.h"
#include "applications/player/tweaks/tweakbase.h"
#include "applications/player/tweaks/tweakstree.h"
#include "orncommon/core/applicationsettings.h"

#include <algorithm>
#include <utility>

namespace Zph::Applications::Player {

Presets::Presets(const TweaksTree& rows, QObject* parent) : QObject(parent), m_rows(rows)
{
}

InputLookUp Presets::inputLookUp() const
{
    return [this](quint32 uid) -> const Input* {
        const auto found = m_rows.tweaks.find(uid);
        return found == m_rows.tweaks.end() ? nullptr : found->second;
    };
}

void Presets::readInternal(const DescriptionIndex& description)
{
    m_description = description;
    removeFile(QString());
    m_undo.reset();
    m_lastApplied.clear();
    const QDir directory(Orn::Core::ApplicationSettings::getInstance().getApplicationDataDir());
    m_presets += readInternalPresets(description, directory, inputLookUp());
}

void Presets::replaceFile(const QString& fileName, const QVector<PresetDescription>& presets)
{
    const auto isOfFile = [&](const PresetDescription& preset) { return preset.fileName == fileName; };
    const auto old = std::find_if(m_presets.begin(), m_presets.end(), isOfFile);
    auto place = int(std::distance(m_presets.begin(), old));
    m_presets.erase(std::remove_if(old, m_presets.end(), isOfFile), m_presets.end());
    for (PresetDescription preset : presets) {
        preset.fileName = fileName;
        m_presets.insert(place++, preset);
    }
    if (!m_fileList.contains(fileName))
        m_fileList.append(fileName);
}

void Presets::removeFile(const QString& fileName)
{
    m_fileList.removeAll(fileName);
    m_presets.erase(
        std::remove_if(m_presets.begin(), m_presets.end(),
                       [&](const PresetDescription& preset) { return preset.fileName == fileName; }),
        m_presets.end());
}

Tweaks Presets::tweaksOfGraph(const QString& graphKey) const
{
    return m_rows.tweaksOfGraph(graphKey);
}

QString Presets::graphLabel(const QString& graphKey) const
{
    const QString label = m_description.graph(graphKey).attribute(QStringLiteral("label"));
    return label.isEmpty() ? QString(graphKey).remove(QStringLiteral("pkg://")) : label;
}

void Presets::apply(const QString& graphKey, const PresetDescription& preset)
{
    const Tweaks tweaks = tweaksOfGraph(graphKey);
    Undo undo{graphKey, preset.label, {}, m_lastApplied};
    undo.before.inputs = collectValues(tweaks, Collected::All);
    if (m_exportSettings && m_applyExportOptions && preset.exportOptions)
        undo.before.exportOptions = m_exportSettings->exportSettings();
    m_undo = undo;
    m_lastApplied = preset.label;
    applyInBatch(tweaks, preset);
    if (m_applyExportOptions && preset.exportOptions)
        applyExport(preset.exportOptions);
}

void Presets::applyMetadata(const QString& graphKey, const PresetDescription& preset)
{
    replaceFile(metadataName(), {preset});
    Tweaks tweaks = tweaksOfGraph(graphKey);
    for (auto row = tweaks.begin(); row != tweaks.end();)
        row = row->second->isImage() ? tweaks.erase(row) : std::next(row);
    applyInBatch(tweaks, preset);
}

void Presets::applyInBatch(const Tweaks& tweaks, const PresetDescription& preset)
{
    emit batchTweakUpdate(true);
    applyValues(tweaks, preset);
    emit batchTweakUpdate(false);
}

void Presets::applyExport(const std::optional<ExportSettings>& settings)
{
    if (!m_exportSettings)
        m_exportToApply = settings;
    else if (settings)
        m_exportSettings->applyExportSettings(*settings);
}

void Presets::setExportSettings(ExportSettingsHolder* holder)
{
    m_exportSettings = holder;
    if (const auto settings = std::exchange(m_exportToApply, {}))
        m_exportSettings->applyExportSettings(*settings);
}

std::optional<QString> Presets::undoLabel(const QString& graphKey) const
{
    return m_undo && m_undo->graphKey == graphKey ? std::optional(m_undo->label) : std::nullopt;
}

void Presets::undo(const QString& graphKey)
{
    if (!undoLabel(graphKey))
        return;
    const Undo undo = *std::exchange(m_undo, {});
    m_lastApplied = undo.lastAppliedBefore;
    applyInBatch(tweaksOfGraph(graphKey), undo.before);
    applyExport(undo.before.exportOptions);
}

void Presets::showMenu(QWidget* parent, const QString& graphKey)
{
    popUpPresetsMenu(*this, parent, graphKey);
}

} // namespace Zph::Applications::Player
