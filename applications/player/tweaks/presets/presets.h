#pragma once

#include "applications/player/presets/presetdescription.h"
#include "applications/player/tweaks/presets/tweakvalues.h"

#include <QObject>
#include <QStringList>

#include <optional>

class QWidget;

namespace Zph::Applications::Player {

class ExportSettingsHolder;
struct TweaksTree;

// The presets that the panel knows: those of the package that is open and those of the files that were
// loaded or saved. It applies them to the rows, writes files, and shows the menu of a graph.
//
// Rows are looked up at the moment of need, because dialogs let a new package come in. Main thread.
class Presets : public QObject
{
    Q_OBJECT

public:
    // The file name of presets that came with an exported bitmap; a name that begins with "<" is no file.
    static QString metadataName() { return QStringLiteral("<From Metadata>"); }

    // The rows of the panel; they outlive the object.
    explicit Presets(const TweaksTree& rows, QObject* parent = nullptr);

    // Whoever has the settings of exports, once the package is known there; not owned. Settings of a preset
    // that was applied before are handed over now.
    void setExportSettings(ExportSettingsHolder* holder);

    // Takes the presets of a package in place of those of the one before.
    void readInternal(const DescriptionIndex& description);
    // Takes presets in the place of those that came under the same file name, and remembers the file.
    void replaceFile(const QString& fileName, const QVector<PresetDescription>& presets);
    void removeFile(const QString& fileName);

    // Applies a preset to a graph as one batch, and its settings of exports if that is switched on.
    void apply(const QString& graphKey, const PresetDescription& preset);
    // The same for a preset of a bitmap's metadata, which leaves pictures and exports alone and can't be
    // undone: the package has just been opened.
    void applyMetadata(const QString& graphKey, const PresetDescription& preset);

    // The preset that undo() takes back in this graph; nothing where there is none.
    std::optional<QString> undoLabel(const QString& graphKey) const;
    void undo(const QString& graphKey);

    // Pops up the menu of a graph under its button, `parent`.
    void showMenu(QWidget* parent, const QString& graphKey);

    // In the order of reading.
    const QVector<PresetDescription>& presets() const { return m_presets; }
    const QStringList& fileList() const { return m_fileList; }
    Tweaks tweaksOfGraph(const QString& graphKey) const;
    // The label of a graph of the package; of another one its path.
    QString graphLabel(const QString& graphKey) const;
    bool appliesExportOptions() const { return m_applyExportOptions; }
    void setAppliesExportOptions(bool applies) { m_applyExportOptions = applies; }
    // The label of the preset that was applied last in this package; may be empty.
    const QString& lastAppliedPreset() const { return m_lastApplied; }

signals:
    // Holds back the changes of the rows from true to false.
    void batchTweakUpdate(bool begin);

public slots:
    // These ask the user for a file, with dialogs in front of `parent`.
    void loadPresetsFile(QWidget* parent);
    // Puts the values of a graph into a preset file, an existing one as well; an empty name is asked for.
    void savePresetIntoFile(QWidget* parent, const QString& graphKey, QString fileName = {});
    void exportToMaya(QWidget* parent, const QString& graphKey);

private:
    struct Undo
    {
        QString graphKey;
        QString label;
        PresetDescription before;
        QString lastAppliedBefore;
    };

    InputLookUp inputLookUp() const;
    std::optional<QVector<PresetDescription>> readFile(QWidget* parent, const QString& fileName) const;
    void applyInBatch(const Tweaks& tweaks, const PresetDescription& preset);
    void applyExport(const std::optional<ExportSettings>& settings);

    const TweaksTree& m_rows;
    DescriptionIndex m_description;
    QVector<PresetDescription> m_presets;
    QStringList m_fileList;
    ExportSettingsHolder* m_exportSettings = nullptr;
    std::optional<ExportSettings> m_exportToApply; // as long as nobody has such settings
    bool m_applyExportOptions = false;
    QString m_lastApplied;
    std::optional<Undo> m_undo;
};

} // namespace Zph::Applications::Player
