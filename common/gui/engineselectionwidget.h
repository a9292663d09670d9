#pragma once

#include "common/engine/engineswitcher.h"

#include <QDialog>

class QDialogButtonBox;
class QLabel;
class QPushButton;
class QTableWidget;

namespace Zph::Gui {

using EngineDescPtr = Zph::Engine::EngineDescPtr;

/// Lets the user choose the engine from those that there are, add an engine file from elsewhere, and take
/// such a file out again. Adding and removing are kept at once; the choice is the caller's to load.
class EngineSelectionWidget : public QDialog
{
    Q_OBJECT

public:
    /// `current`, which is in use, is marked and selected.
    EngineSelectionWidget(const QVector<EngineDescPtr>& engines, const QString& current,
                          QWidget* parent = nullptr);

    /// The path of the selected engine; empty for none.
    QString selectedPath() const;

    /// What the user is told of a file that is no engine.
    static void showInvalidEngine(const QString& path, QWidget* parent);

public slots:
    /// Adds and selects the engine in the file; a file that is none is told to the user.
    void addNewEngine(const QString& path);
    void removeSelectedEngine();

private:
    void createWidgets();
    QWidget* createDescription();
    void connectWidgets();
    void appendRow(const EngineDescPtr& engine);
    int rowOf(const QString& path) const;
    EngineDescPtr engineAt(int row) const;
    void browse();
    void updateSelection();
    void showDescription(const Zph::Engine::EngineDesc& engine);

    QString m_current;
    QTableWidget* m_table;
    QPushButton* mAddButton;
    QPushButton* mRemoveButton;
    QWidget* m_description;
    QLabel* mDescriptionTitle;
    QLabel* mDescriptionVersion;
    QLabel* mDescriptionBuild;
    QLabel* mDescriptionFile;
    QLabel* mDescriptionDesc;
    QDialogButtonBox* m_buttons;
};

} // namespace Zph::Gui

Q_DECLARE_METATYPE(Zph::Gui::EngineDescPtr)
