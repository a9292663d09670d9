#pragma once

#include "applications/player/presets/presetdescription.h"

#include <QDialog>

class QCheckBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QToolButton;

namespace Zph::Applications::Player {

// Asks under which name and description a preset goes into a file, in place of which of those there, and
// which of them to drop. The list ends with an entry for a new one, and follows the name that is typed.
class PresetSave : public QDialog
{
    Q_OBJECT

public:
    // `hasExport`: there are settings of an export that the preset could carry.
    PresetSave(const QString& fileName, const QVector<PresetDescription>& existing, bool hasExport,
               QWidget* parent = nullptr);

    // The content of the file when the user is done: the preset with its name and description, in its place
    // among those that are kept. A preset that is replaced hands on its settings of an export where the user
    // could not choose.
    QVector<PresetDescription> presetsWith(PresetDescription preset,
                                           const std::optional<ExportSettings>& exported) const;

private slots:
    void labelModified(const QString& label);
    void existingListSelection();
    void deleteExisting();

private:
    void makeList();
    QWidget* makeListHeader();
    void makeForm();
    // The place of the selected preset among the existing ones; -1 for a new one.
    int selectedPreset() const;

    QVector<PresetDescription> m_existing;
    bool m_hasExport;
    QListWidget* m_list;
    QToolButton* m_deleteButton;
    QLineEdit* m_nameEdit;
    QLineEdit* m_descriptionEdit;
    QCheckBox* m_exportBox;
    QPushButton* m_saveButton = nullptr;
};

} // namespace Zph::Applications::Player
