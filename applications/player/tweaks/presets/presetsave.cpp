#include "applications/player/tweaks/presets/presetsave.h"

#include "applications/player/tweaks/sharedicon.h"
#include "orncommon/gui/elidedlabel.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QToolButton>

namespace Zph::Applications::Player {

namespace {

constexpr int kNewPreset = -1;
constexpr int kWidth = 380;

} // namespace

PresetSave::PresetSave(const QString& fileName, const QVector<PresetDescription>& existing, bool hasExport,
                       QWidget* parent)
    : QDialog(parent), m_existing(existing), m_hasExport(hasExport), m_list(new QListWidget(this)),
      m_deleteButton(new QToolButton(this)), m_nameEdit(new QLineEdit(this)),
      m_descriptionEdit(new QLineEdit(this)),
      m_exportBox(new QCheckBox(tr("Save &Export path and options"), this))
{
    setWindowTitle(tr("Preset File '%1'").arg(QFileInfo(fileName).fileName()));
    auto* layout = new QVBoxLayout(this);
    auto* file = new Orn::Gui::ElidedLabel(tr("File : '%1'").arg(fileName), this);
    file->setToolTip(plainToolTip(fileName));
    layout->addWidget(file);
    layout->addWidget(makeListHeader());
    layout->addWidget(m_list, 1);
    makeForm();
    m_exportBox->setVisible(hasExport);
    layout->addWidget(m_exportBox);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    m_saveButton = buttons->addButton(tr("Save"), QDialogButtonBox::AcceptRole);
    m_saveButton->setDefault(true);
    m_saveButton->setEnabled(false);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    makeList();
    resize(kWidth, sizeHint().height());
    m_nameEdit->setFocus();
}

QWidget* PresetSave::makeListHeader()
{
    auto* header = new QWidget(this);
    auto* layout = new QHBoxLayout(header);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* label = new QLabel(tr("&Presets :"), header);
    label->setBuddy(m_list);
    m_deleteButton->setIcon(sharedIcon(QStringLiteral(":/orn/gui/icons/itemdelete.svg")));
    m_deleteButton->setToolTip(tr("Delete selected preset"));
    m_deleteButton->setAccessibleName(m_deleteButton->toolTip());
    m_deleteButton->setAutoRaise(true);
    layout->addWidget(label, 1);
    layout->addWidget(m_deleteButton);
    connect(m_deleteButton, &QToolButton::clicked, this, &PresetSave::deleteExisting);
    return header;
}

void PresetSave::makeForm()
{
    auto* form = new QFormLayout;
    form->addRow(tr("&Name :"), m_nameEdit);
    form->addRow(tr("&Description :"), m_descriptionEdit);
    static_cast<QVBoxLayout*>(layout())->addLayout(form);
    m_nameEdit->setAccessibleName(tr("Name"));
    m_descriptionEdit->setAccessibleName(tr("Description"));
    connect(m_nameEdit, &QLineEdit::textChanged, this, &PresetSave::labelModified);
}

void PresetSave::makeList()
{
    m_list->setAccessibleName(tr("Presets"));
    for (int i = 0; i < m_existing.size(); ++i) {
        auto* item =
            new QListWidgetItem(sharedIcon(QStringLiteral(":/zph/applications/player/images/preset.svg")),
                                m_existing[i].label, m_list);
        item->setData(Qt::UserRole, i);
        item->setToolTip(plainToolTip(m_existing[i].description));
    }
    auto* item = new QListWidgetItem(sharedIcon(QStringLiteral(":/zph/editor/gui/images/itemnew.svg")),
                                     tr("New"), m_list);
    item->setData(Qt::UserRole, kNewPreset);
    connect(m_list, &QListWidget::currentItemChanged, this, &PresetSave::existingListSelection);
    m_list->setCurrentItem(item);
}

int PresetSave::selectedPreset() const
{
    const QListWidgetItem* item = m_list->currentItem();
    return item ? item->data(Qt::UserRole).toInt() : kNewPreset;
}

void PresetSave::labelModified(const QString& label)
{
    m_saveButton->setEnabled(!label.isEmpty());
    const int before = selectedPreset();
    if (before != kNewPreset && m_existing[before].label == label)
        return;
    QListWidgetItem* match = m_list->item(m_list->count() - 1);
    for (QListWidgetItem* item : m_list->findItems(label, Qt::MatchExactly | Qt::MatchCaseSensitive))
        if (item->data(Qt::UserRole).toInt() != kNewPreset) {
            match = item;
            break;
        }
    // What is typed stays: a name that is one letter too long has no entry, and must not be emptied.
    const QSignalBlocker blocker(m_list);
    m_list->setCurrentItem(match);
    const int after = selectedPreset();
    if (after != kNewPreset)
        m_descriptionEdit->setText(m_existing[after].description);
    else if (before != kNewPreset && m_descriptionEdit->text() == m_existing[before].description)
        m_descriptionEdit->clear();
    m_deleteButton->setEnabled(after != kNewPreset);
}

void PresetSave::existingListSelection()
{
    const int index = selectedPreset();
    const PresetDescription preset = index == kNewPreset ? PresetDescription() : m_existing[index];
    m_deleteButton->setEnabled(index != kNewPreset);
    m_exportBox->setChecked(preset.exportOptions.has_value());
    m_nameEdit->setText(preset.label);
    m_descriptionEdit->setText(preset.description);
}

void PresetSave::deleteExisting()
{
    if (selectedPreset() == kNewPreset)
        return;
    delete m_list->takeItem(m_list->currentRow());
    m_list->setCurrentRow(m_list->count() - 1);
}

QVector<PresetDescription> PresetSave::presetsWith(PresetDescription preset,
                                                   const std::optional<ExportSettings>& exported) const
{
    preset.label = m_nameEdit->text();
    preset.description = m_descriptionEdit->text();
    const int replaced = selectedPreset();
    if (m_hasExport)
        preset.exportOptions = m_exportBox->isChecked() ? exported : std::nullopt;
    else if (replaced != kNewPreset)
        preset.exportOptions = m_existing[replaced].exportOptions;
    QVector<PresetDescription> presets;
    for (int row = 0; row < m_list->count(); ++row) {
        const int index = m_list->item(row)->data(Qt::UserRole).toInt();
        if (index == replaced)
            presets.append(preset);
        else if (index != kNewPreset)
            presets.append(m_existing[index]);
    }
    return presets;
}

} // namespace Zph::Applications::Player
