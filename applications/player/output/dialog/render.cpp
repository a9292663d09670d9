// The dialog's pages and settings. What happens once "Export" is pressed is in renderrun.cpp.

#include "render.h"

#include "applications/player/description/packagemodel.h"
#include "applications/player/metadata/exportplan.h"
#include "applications/player/output/dialog/exportdialogsettings.h"
#include "applications/player/output/dialog/exportrun.h"
#include "applications/player/output/dialog/fieldlabel.h"
#include "applications/player/output/dialog/folderedit.h"
#include "applications/player/output/dialog/formatcontrols.h"
#include "applications/player/output/dialog/metadatacontrols.h"
#include "applications/player/output/dialog/outputtree.h"
#include "applications/player/output/dialog/packingtemplatebox.h"
#include "applications/player/output/dialog/patternmenu.h"
#include "applications/player/output/dialog/progresspage.h"
#include "applications/player/output/dialog/timecontrols.h"
#include "applications/player/session/static.h"

#include <QCloseEvent>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QStandardPaths>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

namespace Zph::Applications::Player {

namespace {

constexpr QSize kFirstSize(640, 520);

QString firstFolder()
{
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    return pictures.isEmpty() ? QDir::homePath() : pictures;
}

} // namespace

Render::Render(RenderHost& host, QWidget* parent) : QDialog(parent), m_host(host)
{
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setWindowTitle(tr("Export as Bitmap(s)"));
    m_pages = new QStackedWidget(this);
    m_pages->addWidget(makeSettingsPage());
    m_progress = new ProgressPage(this);
    m_pages->addWidget(m_progress);
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(12);
    layout->addWidget(m_pages, 1);
    layout->addLayout(makeButtons());
    connectControls();
    ExportSettings settings;
    settings.dir = firstFolder();
    applyExportSettings(settings);
    setState(State::Settings);
    resize(kFirstSize);
}

Render::~Render() = default;

QWidget* Render::makeSettingsPage()
{
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    m_time = new TimeControls(page);
    m_tree = new OutputTree(page);
    m_metadata = new MetadataControls(page);
    m_example = new QLabel(page);
    m_example->setEnabled(false); // quiet
    layout->addWidget(m_time);
    layout->addLayout(makeFolderRow());
    layout->addLayout(makePatternRow());
    layout->addLayout(makePackingRow());
    layout->addSpacing(4);
    layout->addWidget(fieldLabel(m_tree, tr("Select Output(s) to export:"), page));
    layout->addWidget(m_tree, 1);
    layout->addWidget(m_example);
    layout->addWidget(m_metadata);
    return page;
}

QLayout* Render::makeFolderRow()
{
    m_folder = new FolderEdit(this);
    m_folder->setToolTip(tr("Bitmap(s) destination folder (Drag & Drop enabled)."));
    auto* browse = new QPushButton(tr("Browse..."), this);
    browse->setToolTip(tr("Browse Bitmap(s) destination folder."));
    connect(browse, &QPushButton::clicked, this, &Render::browseDir);
    m_format = new FormatControls(this);
    auto* row = new QHBoxLayout;
    row->addWidget(fieldLabel(m_folder, tr("Folder:"), this));
    row->addWidget(m_folder, 1);
    row->addWidget(browse);
    row->addWidget(m_format);
    return row;
}

QLayout* Render::makePatternRow()
{
    m_pattern = new QLineEdit(this);
    m_pattern->setToolTip(PatternMenu::help());
    auto* button = new QPushButton(tr("Pattern"), this);
    button->setToolTip(tr("Base name pattern helper menu."));
    auto* menu = new PatternMenu(this);
    button->setMenu(menu);
    connect(menu, &QMenu::triggered, this, &Render::actionPatternsMenu);
    auto* row = new QHBoxLayout;
    row->addWidget(fieldLabel(m_pattern, tr("Base name pattern:"), this));
    row->addWidget(m_pattern, 1);
    row->addWidget(button);
    return row;
}

QLayout* Render::makePackingRow()
{
    m_packing = new PackingTemplateBox(this);
    auto* row = new QHBoxLayout;
    row->addWidget(fieldLabel(m_packing, tr("Packing template:"), this));
    row->addWidget(m_packing);
    row->addStretch(1);
    return row;
}

QLayout* Render::makeButtons()
{
    m_closeButton = new QPushButton(this);
    m_exportButton = new QPushButton(this);
    m_closeButton->setAutoDefault(false);
    m_exportButton->setDefault(true);
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(m_closeButton);
    row->addWidget(m_exportButton);
    return row;
}

void Render::connectControls()
{
    connect(m_time, &TimeControls::unitChanged, this, &Render::timeUnitChanged);
    connect(m_time, &TimeControls::timeModified, this, &Render::timeModified);
    connect(m_time, &TimeControls::countModified, this, &Render::timeCountModified);
    connect(m_format, &FormatControls::formatChanged, this, &Render::describePattern);
    connect(m_format, &FormatControls::optionsWanted, this, &Render::formatOption);
    connect(m_pattern, &QLineEdit::textChanged, this, &Render::describePattern);
    connect(m_packing, qOverload<int>(&QComboBox::activated), this,
            [this] { setPackingTemplate(m_packing->name()); });
    connect(m_tree, &QTreeWidget::currentItemChanged, this, &Render::outputListCurrent);
    connect(m_tree, &QTreeWidget::itemChanged, this, &Render::outputListSelection);
    connect(m_metadata, &MetadataControls::mainChanged, this, &Render::metaMainChanged);
    connect(m_progress, &ProgressPage::resultActivated, this, &Render::openResultItem);
    connect(m_closeButton, &QPushButton::clicked, this, &Render::cancelSlot);
    connect(m_exportButton, &QPushButton::clicked, this, &Render::startOrGoBack);
}

// ---- The document

void Render::setDocument(const RenderDocument& document)
{
    const bool isOther = document.package != m_document.package;
    if (isOther && m_state == State::Exporting)
        cancelSlot();
    if (isOther && m_document.package)
        m_disabledOf[packageKey()] = m_tree->disabled();
    const QString pattern = m_pattern->text().trimmed();
    const bool wasUsual = pattern.isEmpty() || pattern == m_usualPattern;
    m_document = document;
    if (!document.package) {
        m_tree->clear();
        hide();
        return;
    }
    if (isOther) {
        m_archive.clear();
        m_tree->setPackage(*document.package, m_disabledOf.value(packageKey()));
    }
    if (wasUsual)
        resetBasenamePattern();
    m_time->setVisible(document.isTimeDependent);
    if (document.isTimeDependent && !m_wasTimeSet) {
        ExportSettings settings;
        settings.timeEnd = Static::instance().timelineFrames;
        settings.fps = double(Static::instance().timelineRate);
        m_time->read(settings);
        m_wasTimeSet = true;
    }
    m_metadata->setWithoutArchive(document.whyWithoutArchive);
    setWindowTitle(document.isTimeDependent ? tr("Render animation as Bitmap(s)")
                                            : tr("Export as Bitmap(s)"));
    describePattern();
}

/// What tells packages apart across reloads.
QString Render::packageKey() const
{
    QStringList keys;
    for (const PackageGraph& graph : m_document.package->graphs())
        keys << graph.key;
    return keys.join('\n');
}

QVector<PackageOutput> Render::selectedOutputs() const
{
    QVector<PackageOutput> selected;
    if (!m_document.package)
        return selected;
    const std::set<quint32> uids = m_tree->checked();
    for (const PackageOutput& output : m_document.package->outputs())
        if (uids.count(output.uid) > 0)
            selected.append(output);
    return selected;
}

// ---- Settings

std::optional<ExportSettings> Render::exportSettings() const
{
    return m_document.package ? std::optional(currentSettings()) : std::nullopt;
}

ExportSettings Render::currentSettings() const
{
    ExportSettings settings;
    m_time->write(settings);
    settings.dir = m_folder->folder();
    settings.format = m_format->format();
    settings.pattern = m_pattern->text();
    settings.metadataOptions = m_metadata->choices().toBits();
    settings.quality = m_format->quality();
    settings.disabled = m_tree->disabled();
    return settings;
}

void Render::applyExportSettings(const ExportSettings& settings)
{
    m_time->read(settings);
    m_wasTimeSet = m_document.package != nullptr;
    const QString remembered = ExportDialogSettings::rendersPath.read();
    m_folder->setFolder(!settings.dir.isEmpty() ? settings.dir
                        : !remembered.isEmpty() ? remembered
                                                : firstFolder());
    m_format->setFormat(settings.format);
    m_pattern->setText(settings.pattern);
    if (settings.pattern.trimmed().isEmpty())
        resetBasenamePattern();
    m_metadata->setChoices(MetadataChoices::fromBits(settings.metadataOptions));
    m_format->setQuality(settings.quality);
    m_tree->setDisabled(settings.disabled);
    describePattern();
}

void Render::timeUnitChanged(int unit)
{
    m_time->convertTo(unit);
}

void Render::timeModified()
{
    m_time->updateCount();
    describePattern();
}

void Render::timeCountModified()
{
    m_time->updateEnd();
}

void Render::browseDir()
{
    const QString folder =
        QFileDialog::getExistingDirectory(this, tr("Bitmap(s) destination folder"), m_folder->folder());
    if (!folder.isEmpty())
        m_folder->setFolder(folder);
}

void Render::formatOption()
{
    m_format->openOptions();
}

void Render::actionPatternsMenu(QAction* action)
{
    const QString token = action->data().toString();
    if (token.isEmpty())
        resetBasenamePattern();
    else
        m_pattern->insert(token);
    m_pattern->setFocus();
}

void Render::resetBasenamePattern()
{
    m_usualPattern = usualPattern();
    m_pattern->setText(m_usualPattern);
}

QString Render::usualPattern() const
{
    if (!m_document.package)
        return {};
    const PackingTemplate* packing = m_packing->content();
    return packing && !packing->pattern.isEmpty()
               ? packing->pattern
               : defaultBaseNamePattern(*m_document.package, m_document.isTimeDependent);
}

// ---- Packing

/// Without files where no template is chosen, or where it has none of these outputs.
PackingPlan Render::packingOf(const QVector<PackageOutput>& outputs) const
{
    const PackingTemplate* packing = m_packing->content();
    if (!packing)
        return {};
    return planPacking(*packing, *m_document.package, outputs,
                       [this](const PackageInput& input) { return m_host.valueOf(input); });
}

void Render::setPackingTemplate(const QString& name)
{
    const QString pattern = m_pattern->text().trimmed();
    const bool wasUsual = pattern.isEmpty() || pattern == m_usualPattern;
    m_packing->choose(name);
    if (wasUsual)
        resetBasenamePattern();
    describePattern();
}

// ---- What is asked for

ExportChoices Render::choices() const
{
    const ExportSettings settings = currentSettings();
    ExportChoices choices;
    choices.folder = settings.dir;
    choices.pattern = settings.pattern.trimmed().isEmpty() ? usualPattern() : settings.pattern;
    choices.preset = m_host.lastPreset();
    choices.picture.format = settings.format;
    choices.picture.codec = m_format->codecOptions();
    choices.isAnimation = m_document.isTimeDependent;
    choices.frames = FrameRange::of(settings);
    choices.metadata = MetadataChoices::fromBits(settings.metadataOptions);
    return choices;
}

/// Shows the names that files would have: that of the current output, or those that the template makes.
void Render::describePattern()
{
    m_example->clear();
    m_example->setToolTip({});
    if (!m_document.package)
        return;
    ExportChoices wanted = choices();
    wanted.folder = QStringLiteral("/");
    wanted.metadata = {MetadataChoices::Metadata::Disabled};
    wanted.packing = packingOf(selectedOutputs());
    m_format->setOpen(wanted.packing.files.isEmpty() || wanted.packing.leavesFormat());
    if (m_packing->content() && wanted.packing.files.isEmpty()) {
        m_example->setText(tr("The template takes none of these outputs."));
        return;
    }
    const QString problem = wanted.packing.settle(wanted.picture.format, PictureDepth::OfPicture);
    const QStringList names = fileNames(wanted);
    if (names.isEmpty())
        return;
    const QString text =
        (names.size() > 1 ? tr("File names: %1") : tr("File name: %1")).arg(names.join(QStringLiteral(", ")));
    m_example->setText(m_example->fontMetrics().elidedText(problem.isEmpty() ? text : problem, Qt::ElideRight,
                                                           std::max(m_pages->width(), kFirstSize.width())));
    m_example->setToolTip((names + wanted.packing.notes).join('\n'));
}

/// Of the first frame: of all files of a template, or of the current output's.
QStringList Render::fileNames(const ExportChoices& wanted) const
{
    QVector<PackageOutput> current;
    const TreeItem* item = m_tree->currentOutput();
    for (const PackageOutput& output : m_document.package->outputs())
        if (item && output.uid == item->uid())
            current.append(output);
    ExportPlan plan(*m_document.package, current, wanted, {});
    plan.startFrame(0);
    QStringList names;
    for (int file = 0; file < plan.fileCount(); ++file)
        names << QFileInfo(plan.path(file)).fileName();
    return names;
}

void Render::outputListCurrent()
{
    describePattern();
}

void Render::outputListSelection()
{
    if (m_document.package)
        m_disabledOf[packageKey()] = m_tree->disabled();
    describePattern();
}

void Render::metaMainChanged(int index)
{
    m_metadata->metaMainChanged(index);
}

// ---- Pages

void Render::setState(State state)
{
    m_state = state;
    m_pages->setCurrentIndex(state == State::Settings ? 0 : 1);
    m_closeButton->setText(isRunning() ? tr("Cancel") : tr("Close"));
    m_closeButton->setEnabled(state != State::Cancelling);
    m_exportButton->setText(isRunning() ? tr("Wait...") : state == State::Done ? tr("Back") : tr("Export"));
    m_exportButton->setEnabled(!isRunning());
    (isRunning() ? m_closeButton : m_exportButton)->setDefault(true);
}

void Render::startOrGoBack()
{
    if (m_state == State::Done)
        setState(State::Settings);
    else
        startSlot();
}

void Render::openResultItem(QListWidgetItem* item)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(ProgressPage::pathOf(*item)));
}

void Render::reject()
{
    cancelSlot();
}

void Render::closeEvent(QCloseEvent* event)
{
    if (isRunning()) {
        cancelSlot();
        event->ignore();
        return;
    }
    QDialog::closeEvent(event);
}

} // namespace Zph::Applications::Player
