#include "common/gui/engineselectionwidget.h"

#include "common/engine/backend.h"
#include "orncommon/core/debug.h"
#include "orncommon/core/settingkey.h"

#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTableWidget>
#include <QUrl>

namespace Zph::Gui {

namespace {

enum Column
{
    IconColumn,
    NameColumn,
    VersionColumn,
    ColumnCount
};

const Orn::Core::SettingKey<QString> addPath{"session/dialogs/engine_selection/add_path", {}};

QLabel* createLabel(const QString& name, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::RichText);
    label->setWordWrap(true);
    return label;
}

QString paragraph(const QString& title, const QString& text)
{
    return QStringLiteral("<p><b>%1</b>%2</p>").arg(title, text);
}

} // namespace

EngineSelectionWidget::EngineSelectionWidget(const QVector<EngineDescPtr>& engines, const QString& current,
                                             QWidget* parent)
    : QDialog(parent), m_current(current)
{
    setWindowTitle(tr("Select Vellor Engine..."));
    createWidgets();
    connectWidgets();
    for (const EngineDescPtr& engine : engines)
        appendRow(engine);
    const int row = rowOf(current);
    m_table->selectRow(row >= 0 ? row : 0);
    updateSelection();
}

QString EngineSelectionWidget::selectedPath() const
{
    const EngineDescPtr engine = engineAt(m_table->currentRow());
    return engine ? engine->path : QString();
}

void EngineSelectionWidget::showInvalidEngine(const QString& path, QWidget* parent)
{
    QMessageBox::critical(parent, tr("Invalid Engine Library"),
                          tr("File '%1' is an invalid vellor engine library.").arg(path));
}

void EngineSelectionWidget::addNewEngine(const QString& path)
{
    auto engine = EngineDescPtr::create();
    engine->path = QFileInfo(path).absoluteFilePath();
    if (!Zph::Engine::Switcher::addToMRU(path, engine->version)) {
        showInvalidEngine(path, this);
        return;
    }
    addPath.write(QFileInfo(path).absolutePath());
    if (rowOf(path) < 0) {
        if (engine->version.engineId == 0) { // in the engines folder, and yet not found there
            Orn::Debug::error("addNewEngine: a local engine was not automatically detected");
            return;
        }
        appendRow(engine);
    }
    m_table->selectRow(rowOf(path));
}

void EngineSelectionWidget::removeSelectedEngine()
{
    const EngineDescPtr engine = engineAt(m_table->currentRow());
    if (!engine || engine->automatic)
        return;
    Zph::Engine::Switcher::removeFromMRU(engine->path);
    m_table->removeRow(m_table->currentRow());
    updateSelection();
}

void EngineSelectionWidget::createWidgets()
{
    m_table = new QTableWidget(0, ColumnCount, this);
    m_table->setHorizontalHeaderLabels({QString(), tr("Name"), tr("Version")});
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setShowGrid(false);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->horizontalHeader()->setSectionResizeMode(IconColumn, QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setSectionResizeMode(NameColumn, QHeaderView::Stretch);
    m_table->horizontalHeader()->setSectionResizeMode(VersionColumn, QHeaderView::ResizeToContents);
    mAddButton = new QPushButton(tr("Add"), this);
    mAddButton->setObjectName(QStringLiteral("mAddButton"));
    mRemoveButton = new QPushButton(tr("Remove"), this);
    mRemoveButton->setObjectName(QStringLiteral("mRemoveButton"));
    m_buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);

    auto* edit = new QHBoxLayout;
    edit->addWidget(mAddButton);
    edit->addWidget(mRemoveButton);
    edit->addStretch();
    auto* list = new QVBoxLayout;
    list->addWidget(new QLabel(tr("Select Vellor Engine:"), this));
    list->addWidget(m_table);
    list->addLayout(edit);
    auto* panes = new QHBoxLayout;
    panes->addLayout(list, 1);
    panes->addWidget(createDescription(), 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(panes);
    layout->addWidget(m_buttons);
    resize(760, 420);
}

QWidget* EngineSelectionWidget::createDescription()
{
    m_description = new QWidget(this);
    mDescriptionTitle = createLabel(QStringLiteral("mDescriptionTitle"), m_description);
    mDescriptionVersion = createLabel(QStringLiteral("mDescriptionVersion"), m_description);
    mDescriptionBuild = createLabel(QStringLiteral("mDescriptionBuild"), m_description);
    mDescriptionFile = createLabel(QStringLiteral("mDescriptionFile"), m_description);
    mDescriptionDesc = createLabel(QStringLiteral("mDescriptionDesc"), m_description);
    auto* layout = new QVBoxLayout(m_description);
    for (QLabel* label :
         {mDescriptionTitle, mDescriptionVersion, mDescriptionBuild, mDescriptionFile, mDescriptionDesc})
        layout->addWidget(label);
    layout->addStretch();
    return m_description;
}

void EngineSelectionWidget::connectWidgets()
{
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(mAddButton, &QPushButton::clicked, this, &EngineSelectionWidget::browse);
    connect(mRemoveButton, &QPushButton::clicked, this, &EngineSelectionWidget::removeSelectedEngine);
    connect(m_table, &QTableWidget::itemSelectionChanged, this, &EngineSelectionWidget::updateSelection);
    connect(m_table, &QTableWidget::cellDoubleClicked, this, &QDialog::accept);
    connect(mDescriptionFile, &QLabel::linkActivated, this, [this] {
        QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(selectedPath()).absolutePath()));
    });
}

void EngineSelectionWidget::appendRow(const EngineDescPtr& engine)
{
    const int row = m_table->rowCount();
    m_table->insertRow(row);
    auto* icon = new QTableWidgetItem;
    icon->setData(Qt::UserRole, QVariant::fromValue(engine));
    auto* name = new QTableWidgetItem(QString::fromUtf8(engine->version.name));
    const bool isCurrent = QFileInfo(engine->path) == QFileInfo(m_current);
    QFont font = name->font();
    font.setBold(isCurrent);
    font.setItalic(!engine->automatic);
    name->setFont(font);
    if (isCurrent)
        icon->setIcon(QIcon(QStringLiteral(":/orn/gui/icons/check.svg")));
    m_table->setItem(row, IconColumn, icon);
    m_table->setItem(row, NameColumn, name);
    m_table->setItem(row, VersionColumn,
                     new QTableWidgetItem(Zph::Engine::engineVersionText(engine->version)));
}

int EngineSelectionWidget::rowOf(const QString& path) const
{
    for (int row = 0; row < m_table->rowCount(); ++row) {
        if (QFileInfo(engineAt(row)->path) == QFileInfo(path))
            return row;
    }
    return -1;
}

EngineDescPtr EngineSelectionWidget::engineAt(int row) const
{
    const QTableWidgetItem* item = m_table->item(row, IconColumn);
    return item ? item->data(Qt::UserRole).value<EngineDescPtr>() : EngineDescPtr();
}

void EngineSelectionWidget::browse()
{
    const QString path = QFileDialog::getOpenFileName(this, tr("Add Engine File"), addPath.read(),
                                                      tr("Vellor engine") + QStringLiteral(" (*.so*)"));
    if (!path.isEmpty())
        addNewEngine(path);
}

void EngineSelectionWidget::updateSelection()
{
    const EngineDescPtr engine = engineAt(m_table->currentRow());
    mRemoveButton->setEnabled(engine && !engine->automatic);
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(bool(engine));
    m_description->setVisible(bool(engine));
    if (engine)
        showDescription(*engine);
}

void EngineSelectionWidget::showDescription(const Zph::Engine::EngineDesc& engine)
{
    const VellorVersion& version = engine.version;
    const QString hash = QStringLiteral("%1").arg(version.buildHash, 8, 16, QLatin1Char('0')).toUpper();
    mDescriptionTitle->setText(
        QStringLiteral("<h2>%1</h2>").arg(QString::fromUtf8(version.name).toHtmlEscaped()));
    mDescriptionVersion->setText(
        paragraph(tr("Version: "), Zph::Engine::engineVersionText(version).toHtmlEscaped()));
    mDescriptionBuild->setText(paragraph(tr("Build: "), QStringLiteral("0x") + hash));
    mDescriptionFile->setText(QStringLiteral("<p><b>%1</b><a href=\"%2\">%3</a></p>")
                                  .arg(tr("File: "),
                                       QUrl::fromLocalFile(engine.path).toString().toHtmlEscaped(),
                                       QFileInfo(engine.path).fileName().toHtmlEscaped()));
    mDescriptionDesc->setText(QStringLiteral("<hr>") +
                              Zph::Engine::engineDescription(version.engineId).toHtmlEscaped());
    mDescriptionFile->setToolTip(engine.path);
}

} // namespace Zph::Gui
