#include "mainwindow.h"

#include "applications/player/description/packagemodel.h"
#include "applications/player/session/engine.h"
#include "applications/player/session/enginerecords.h"
#include "applications/player/session/packagecooker.h"
#include "applications/player/session/packagelinker.h"
#include "applications/player/session/sessionsettings.h"
#include "applications/player/session/static.h"
#include "applications/player/shell/aboutdialog.h"
#include "applications/player/shell/errorconsole.h"
#include "applications/player/shell/filekinds.h"
#include "applications/player/shell/installation.h"
#include "applications/player/shell/languagemenu.h"
#include "applications/player/shell/mainactions.h"
#include "applications/player/shell/shellsettings.h"
#include "applications/player/shell/windowgeometry.h"
#include "applications/player/timeline/timeline.h"
#include "applications/player/tweaks/tweakslist.h"
#include "applications/player/views/view2d.h"
#include "applications/player/views/view3d.h"
#include "applications/player/views/viewoutput2d.h"
#include "common/engine/backend.h"
#include "orncommon/core/channellogger.h"
#include "orncommon/core/translations.h"
#include "orncommon/gui/dockwidget.h"
#include "orncommon/gui/layoutmanager.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QUrl>

#include <algorithm>

namespace Zph::Applications::Player {

namespace {

const Orn::Core::Log::ChannelLogger logger("Engine");

constexpr int kStatusBarHeight = 16;
constexpr int kParametersWidth = 440;
constexpr int kFirstSizeExponent = 3, kLastSizeExponent = 15, kUnsetSizeExponent = 11;

bool isDroppable(const QUrl& url)
{
    return url.isLocalFile() && droppableSuffixes().contains(QFileInfo(url.toLocalFile()).suffix().toLower());
}

/// Whether one of the authoring files names something of the packages that ship with the authoring
/// application.
bool mentionsStudioPackages(const QStringList& filepaths)
{
    return std::any_of(filepaths.begin(), filepaths.end(), [](const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) && file.readAll().contains("vlr://");
    });
}

} // namespace

MainWindow::MainWindow(ColorEngine colorEngine, QWidget* parent, Qt::WindowFlags flags)
    : QMainWindow(parent, flags), m_colorEngine(std::move(colorEngine)), m_loader(*this)
{
    installTranslators();
    setAcceptDrops(true);
    setDockOptions(AnimatedDocks | AllowTabbedDocks);
    setTabPosition(Qt::AllDockWidgetAreas, QTabWidget::North);
    resize(WindowGeometry::initialSize());
    m_layout = new Orn::Gui::LayoutManager(this);
    m_actions = new MainActions(this);
    makeAreas();
    makePanels();
    connectPanels();
    m_menus = std::make_unique<MainMenus>(*this, *m_actions, Static::instance().stockPackageFiles());
    connectActions();
    makeStatusBar();
    setDocumentTitle({});
    restoreLayout();
}

MainWindow::~MainWindow()
{
    deleteEngine();
    m_viewers.clear();
    // The panels' destructors call back into the window: they go while it is still whole.
    delete m_view2D;
    delete m_view3D;
}

void MainWindow::makeAreas()
{
    using Orn::Gui::LayoutManager;
    const int area2D =
        m_layout->addArea(-1, Qt::Horizontal, "area2DView", tr("2D View"), playerIcon("view2d"), 1, 0);
    const int areaTimeline =
        m_layout->addArea(area2D, Qt::Vertical, "areaTimeLine", tr("Timeline"), QIcon(), 0, 0);
    const int areaParameters = m_layout->addArea(area2D, Qt::Horizontal, "areaParameters", tr("Parameters"),
                                                 playerIcon("parameters"), 0, kParametersWidth);
    const int area3D =
        m_layout->addArea(area2D, Qt::Vertical, "area3DView", tr("3D View"), playerIcon("view3d"), 1, 0);
    m_layout->addRule(std::make_shared<LayoutManager::AreaTypeRule<View2D>>(), area2D);
    m_layout->addRule(std::make_shared<LayoutManager::AreaTypeRule<Timeline>>(), areaTimeline);
    m_layout->addRule(std::make_shared<LayoutManager::AreaTypeRule<TweaksList>>(), areaParameters);
    m_layout->addRule(std::make_shared<LayoutManager::AreaTypeRule<View3D>>(), area3D);
}

void MainWindow::makePanels()
{
    m_view2D = new View2D(*this);
    m_tweaks = new TweaksList;
    m_view3D = new View3D(*this);
    m_timeline = new Timeline;
    m_layout->addWidget(m_view2D);
    m_layout->addWidget(m_timeline);
    m_layout->addWidget(m_tweaks);
    m_layout->addWidget(m_view3D);
    registerViewer(m_view2D->firstView());
    registerViewer(m_view3D);
}

void MainWindow::connectPanels()
{
    connect(m_tweaks, &TweaksList::tweakChangedSignal, this, &MainWindow::tweakChanged);
    connect(m_tweaks, &TweaksList::hiddenOutputsChanged, this, &MainWindow::hiddenOutputsChanged);
    connect(m_timeline, &Timeline::timeChanged, m_tweaks, &TweaksList::setTimeChanged);
    connect(m_timeline, &Timeline::timeChangeBegun, m_tweaks, &TweaksList::timeChangeBegun);
    connect(m_timeline, &Timeline::timeChangeEnded, m_tweaks, &TweaksList::timeChangeEnded);
    connect(m_tweaks, &TweaksList::timeChangedSignal, m_timeline, &Timeline::setCurrentTime);
    connect(&m_loader, &DocumentLoader::reloadRequested, this, &MainWindow::reload);
    connect(&m_loader, &DocumentLoader::documentFileChanged, this,
            [this] { m_actions->reload->setChecked(true); });
    connect(&m_loader, &DocumentLoader::remoteReceived, this, &MainWindow::loadVlrbinRemoteSignal);
    connect(this, &MainWindow::loadVlrbinRemoteSignal, this, &MainWindow::loadVlrbinRemote);
}

void MainWindow::connectActions()
{
    const MainActions& actions = *m_actions;
    connect(actions.open, &QAction::triggered, this, [this] { openFile(); });
    connect(actions.reload, &QAction::triggered, this, &MainWindow::reload);
    connect(actions.autoReload, &QAction::triggered, this, &MainWindow::reload);
    connect(actions.quit, &QAction::triggered, this, &QWidget::close);
    connect(actions.sizeLimit, &QAction::triggered, this, &MainWindow::openSizeLimitDialog);
    connect(actions.locateStudio, &QAction::triggered, this, &MainWindow::locateStudio);
    connect(actions.resetLayout, &QAction::triggered, this, &MainWindow::onResetLayoutActionTrigerred);
    connect(actions.onlineDocumentation, &QAction::triggered, this, &MainWindow::displayOnlineDocumentation);
    connect(actions.samples, &QAction::triggered, this, &MainWindow::onSamplesCalled);
    connect(actions.aboutMaker, &QAction::triggered, this, &MainWindow::onAboutOrnexClicked);
    connect(actions.about, &QAction::triggered, this, &MainWindow::openAboutDialog);

    m_actions->setDynamicChoices(SessionSettings::dynCommonState.read());
    for (QAction* choice : {actions.dynamicOutputSize, actions.dynamicPixelSize, actions.dynamicRandomSeed})
        connect(choice, &QAction::toggled, this, &MainWindow::dynCommonChanged);
    actions.autoReload->setChecked(Static::instance().autoReload);

    connect(m_menus->recentFiles, &QMenu::aboutToShow, this, &MainWindow::fillMenuMRU);
    connect(m_menus->recentFiles, &QMenu::triggered, this, &MainWindow::execMenuMRU);
    if (m_menus->openMenu)
        connect(m_menus->openMenu, &QMenu::triggered, this, &MainWindow::execMenuMRU);
    fillLanguageMenu(*m_menus->language);
    connect(m_menus->language, &QMenu::triggered, this, &MainWindow::onLanguageSelectionChanged);
    m_layout->fillMenu(m_menus->windows);
    m_menus->windows->addSeparator();
    m_menus->windows->addAction(actions.resetLayout);
}

void MainWindow::makeStatusBar()
{
    statusBar()->setMaximumHeight(kStatusBarHeight);
    statusBar()->setSizeGripEnabled(false);
    m_timeLabel = new QLabel(tr("--- ms"), this);
    m_timeLabel->setToolTip(tr("Processor time of the last generation."));
    statusBar()->addPermanentWidget(m_timeLabel);
}

void MainWindow::restoreLayout()
{
    // Neither panel has anything to show as yet; the timeline comes with the first package that moves.
    m_view3D->dockWidget()->hide();
    m_timeline->dockWidget()->hide();
    m_layout->applyAreaSizes();
    ShellSettings::defaultLayout.write(saveState());
    WindowGeometry::restore(*this);
    const QByteArray layout = ShellSettings::layout.read();
    if (!layout.isEmpty())
        restoreState(layout);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    WindowGeometry::save(*this);
    ShellSettings::layout.write(saveState());
    QMainWindow::closeEvent(event);
}

void MainWindow::onResetLayoutActionTrigerred(bool)
{
    restoreState(ShellSettings::defaultLayout.read());
}

// ---- Opening documents

bool MainWindow::loadFile(const QString& filepath)
{
    if (postponed([this, filepath] { loadFile(filepath); }))
        return false;
    initConsole();
    bool isLoaded = false;
    switch (fileKind(filepath)) {
    case FileKind::Authoring:
        isLoaded = loadVlrFile({filepath});
        break;
    case FileKind::Archive:
        isLoaded = loadVlrarFile(filepath);
        break;
    case FileKind::Assembly:
    case FileKind::Binary:
    case FileKind::Xml:
        isLoaded = loadBinOrAsmFile(filepath);
        break;
    case FileKind::Metadata:
        message(2, tr("'%1' is no Vellor package. This build reads no metadata from bitmaps.").arg(filepath));
        break;
    }
    status(isLoaded ? tr("Load Done.") : tr("Load Failed!"));
    return isLoaded;
}

void MainWindow::openFile(const QString& path)
{
    const QString folder = path.isEmpty() ? Installation::openFolder() : path;
    const QStringList files =
        QFileDialog::getOpenFileNames(this, tr("Open Vellor file"), folder, openDialogFilter());
    if (files.isEmpty())
        return;
    Static::instance().rememberFile(files.first());
    if (files.size() == 1) {
        loadFile(files.first());
        return;
    }
    for (const QString& file : files) {
        if (fileKind(file) == FileKind::Authoring)
            continue;
        QMessageBox::critical(this, windowTitle(),
                              tr("Error: Multiple selection is only allowed for VLR files."));
        status(tr("Load Failed!"));
        return;
    }
    loadTogether(files);
}

/// Several authoring files as one document.
void MainWindow::loadTogether(const QStringList& filepaths)
{
    if (postponed([this, filepaths] { loadTogether(filepaths); }))
        return;
    initConsole();
    status(loadVlrFile(filepaths) ? tr("Load Done.") : tr("Load Failed!"));
}

void MainWindow::reload()
{
    if (postponed([this] { reload(); }))
        return;
    const QStringList files = m_loader.loadedFiles();
    if (files.size() == 1)
        loadFile(files.first());
    else if (!files.isEmpty())
        loadTogether(files);
}

bool MainWindow::loadVlrFile(const QStringList& filepaths)
{
    return m_loader.loadVlrFile(filepaths);
}

bool MainWindow::loadVlrarFile(const QString& filepath)
{
    return m_loader.loadVlrarFile(filepath);
}

bool MainWindow::loadBinOrAsmFile(const QString& filepath)
{
    return m_loader.loadBinOrAsmFile(filepath);
}

bool MainWindow::loadVlrbinRemote()
{
    return !postponed([this] { loadVlrbinRemote(); }) && m_loader.loadVlrbinRemote();
}

void MainWindow::remoteVlrbinReceived(const QByteArray& buffer)
{
    m_loader.remoteVlrbinReceived(buffer);
}

bool MainWindow::loadVlrbin(QIODevice& device)
{
    m_cache.clear();
    deleteEngine();
    m_engine = std::make_unique<Engine>(nullptr, device);
    if (!m_engine->handleOrNull()) {
        message(2, tr("Cannot load Vellor binary file"));
        reset();
        return false;
    }
    connectEngine();
    ++m_loadCounter;
    buildPackage();
    --m_loadCounter;
    const bool isRemote = Static::instance().remoteMode;
    m_actions->reload->setEnabled(!isRemote);
    generate();
    m_tweaks->updateVisibility();
    return true;
}

void MainWindow::connectEngine()
{
    connect(m_engine.get(), &Engine::outputCompleteCallback, this, &MainWindow::outputComplete);
    connect(m_engine.get(), &Engine::errorCallback, this, &MainWindow::errorMsg);
    connect(m_engine.get(), &Engine::finishedCallback, this, &MainWindow::generationFinished);
    connect(m_engine.get(), &Engine::progressCallback, this, &MainWindow::progressMsg);
}

void MainWindow::buildPackage()
{
    const EngineRecords records = readEngineRecords(m_engine->handleOrNull());
    const auto origin =
        Static::instance().remoteMode ? PackageModel::Origin::Remote : PackageModel::Origin::Local;
    m_package =
        std::make_shared<const PackageModel>(records.inputs, records.outputs, m_loader.description(), origin);
    m_cache.setDescription(m_package);
    m_timeline->setEnabled(false); // so that it is shown anew for a package that moves
    m_tweaks->build(*m_package, Static::instance().remoteMode);
    for (ViewOutput* view : m_viewers) {
        view->setPackage(m_package);
        view->outputsChanged(m_tweaks->hiddenOutputs());
    }
}

void MainWindow::deleteEngine()
{
    m_engine.reset();
}

void MainWindow::reset()
{
    setDocumentTitle({});
    deleteEngine();
    m_cache.clear();
    m_cache.setDescription(nullptr);
    m_package.reset();
    m_tweaks->clear();
    for (ViewOutput* view : m_viewers)
        view->clearView();
}

// ---- The generation

void MainWindow::generate()
{
    // A generation follows whatever is postponed.
    if (m_loadCounter != 0 || (m_isGenerating && m_postponed) || postponed([] {}))
        return;
    m_isGenerating = true;
    const GenerationStep::Report report = m_generationStep.run(m_engine.get(), m_cache, *this);
    m_isGenerating = false;
    if (const auto action = std::exchange(m_postponed, {})) {
        dropUnfinished(report.uids);
        QTimer::singleShot(0, this, [this, action] {
            action();
            generate();
        });
    }
}

/// After a generation that was stopped: what it did not get to is asked for again.
void MainWindow::dropUnfinished(const std::vector<quint32>& uids)
{
    for (const quint32 uid : uids)
        if (m_cache.get(uid).surface() == m_generationStep.placeholder().surface())
            m_cache.invalidateOutput(uid);
}

/// Inside a generation: ends it, keeps the action for afterwards and gives true. The latest action counts.
bool MainWindow::postponed(std::function<void()> action)
{
    if (!m_isGenerating)
        return false;
    stopGeneration();
    m_postponed = std::move(action);
    return true;
}

void MainWindow::wantedOutputs(std::set<quint32>& uids)
{
    for (const ViewOutput* view : m_viewers) {
        if (view->isFrozen())
            continue;
        for (quint32 uid : view->currentOutputs())
            uids.insert(uid);
    }
}

void MainWindow::requiredOutputs(std::set<quint32>&)
{
}

void MainWindow::updateTimeline()
{
    const bool isMoving = m_tweaks->anyTimeDependent();
    if (isMoving && !m_timeline->isEnabled())
        m_timeline->raiseInLayout();
    m_timeline->setEnabled(isMoving);
}

void MainWindow::pushInputs(InputSink& engine)
{
    m_tweaks->applyAll(engine);
}

void MainWindow::pinnedInputs(std::list<std::size_t>& indexes)
{
    emit m_tweaks->getActiveTweaksBridge(indexes);
}

void MainWindow::generationStarts(std::size_t outputs)
{
    if (!Static::instance().timelineBusy)
        status(tr("Generating %1 textures...").arg(outputs));
}

void MainWindow::tweakChanged(std::vector<int> indexes)
{
    for (int index : indexes)
        m_cache.inputChanged(index);
    generate();
}

void MainWindow::outputComplete(ORNUInt32 index, ValueOrSurfacePlayer result)
{
    VellorOutputDesc desc = {};
    if (!m_engine || Zph::Engine::handleGetOutputDesc(m_engine->handleOrNull(), index, &desc) != 0)
        return;
    m_cache.pushOutput(desc.uid, result);
    for (ViewOutput* view : std::vector<ViewOutput*>(m_viewers))
        view->outputComplete(desc, result);
    if (!m_isFirstPictureShown) {
        m_isFirstPictureShown = true;
        logger.info(
            QStringLiteral("First output: %1 ms after the process began").arg(Installation::processAge()));
    }
}

void MainWindow::viewOutputChanged(ORNUInt32 uid)
{
    auto* view = qobject_cast<ViewOutput*>(sender());
    const ValueOrSurfacePlayer cached = m_cache.get(uid);
    if (view && !cached.isEmpty())
        view->setDisplay(cached, uid);
    else
        generate();
}

void MainWindow::hiddenOutputsChanged()
{
    if (m_loadCounter != 0)
        return; // the views still have the package of before
    for (ViewOutput* view : m_viewers)
        view->outputsChanged(m_tweaks->hiddenOutputs());
}

void MainWindow::errorMsg(const QString& text)
{
    status(tr("Error: %1.").arg(text));
    QApplication::beep();
}

void MainWindow::progressMsg(int percent)
{
    status(tr("Generating %1%...").arg(percent));
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void MainWindow::generationFinished(float seconds)
{
    m_timeLabel->setText(tr("%1 ms").arg(int(seconds * 1000.0f)));
}

// ---- The views

void MainWindow::registerViewer(ViewOutput* view)
{
    m_viewers.push_back(view);
    connect(view, &ViewOutput::currentOutputChanged, this, &MainWindow::viewOutputChanged);
    if (!m_engine || !m_package)
        return;
    view->setPackage(m_package);
    view->outputsChanged(m_tweaks->hiddenOutputs());
}

void MainWindow::unregisterViewer(ViewOutput* view)
{
    m_viewers.erase(std::remove(m_viewers.begin(), m_viewers.end(), view), m_viewers.end());
}

// ---- What the loader asks for

void MainWindow::initConsole()
{
    if (m_console)
        m_console->clear();
    else
        m_console = new ErrorConsole(this);
}

ErrorConsole& MainWindow::console()
{
    if (!m_console)
        initConsole();
    return *m_console;
}

void MainWindow::message(int level, const QString& text)
{
    console().message(level, text);
}

void MainWindow::stage(const QString& text)
{
    console().stage(text);
    status(text.startsWith(PackageLinker::prefix()) ? text : tr("Cooking : ") + text);
}

void MainWindow::status(const QString& text)
{
    statusBar()->showMessage(text);
}

void MainWindow::setDocumentTitle(const QString& title)
{
    const QString base = QCoreApplication::applicationName();
    setWindowTitle(title.isEmpty() ? base : base + " - " + title);
}

CookingOptions MainWindow::cookingOptions(const QStringList& filepaths)
{
    CookingOptions options;
    options.sizeLimit = Static::instance().sizeLimit();
    options.dynamicState = m_actions->dynamicChoices();
    // Where the authoring application lies is asked for once, and only when a package draws on what ships
    // with it.
    CookingAliases::AskForStudio ask;
    if (!m_isStudioAskedFor && mentionsStudioPackages(filepaths)) {
        m_isStudioAskedFor = true;
        m_aliases.forget();
        ask = [this] {
            return QFileDialog::getExistingDirectory(this, tr("Locate Vellor Studio Installation Directory"));
        };
    }
    options.aliases = m_aliases.get(ask);
    return options;
}

void MainWindow::stopGeneration()
{
    if (m_engine)
        m_engine->stop();
}

bool MainWindow::isAutoReloadOn() const
{
    return m_actions->autoReload->isChecked();
}

// ---- Menus

void MainWindow::fillMenuMRU()
{
    QMenu& menu = *m_menus->recentFiles;
    menu.clear();
    for (const QString& file : Static::instance().recentFiles())
        menu.addAction(QDir::toNativeSeparators(file).replace('&', "&&"))->setData(file);
    if (menu.isEmpty())
        menu.addAction(tr("No recent files"))->setEnabled(false);
}

void MainWindow::execMenuMRU(QAction* action)
{
    const QString file = action->data().toString();
    if (!file.isEmpty())
        loadFile(file);
}

void MainWindow::dynCommonChanged()
{
    if (m_actions->reload->isEnabled())
        status(tr("Please reload file to apply changes."));
    SessionSettings::dynCommonState.write(m_actions->dynamicChoices());
}

void MainWindow::openSizeLimitDialog()
{
    QStringList items;
    for (int exponent = kFirstSizeExponent; exponent <= kLastSizeExponent; ++exponent)
        items << QString::number(1 << exponent);
    const int current = Static::instance().sizeLimit() ? Static::instance().sizeLimit() : kUnsetSizeExponent;
    bool isAccepted = false;
    const QString chosen = QInputDialog::getItem(
        this, tr("Set size limit"),
        tr("Set the cooking size (width and height) limitation of compositing nodes :"), items,
        qBound(0, current - kFirstSizeExponent, int(items.size()) - 1), false, &isAccepted);
    const int exponent = kFirstSizeExponent + items.indexOf(chosen);
    if (!isAccepted || exponent == Static::instance().sizeLimit())
        return;
    Static::instance().setSizeLimit(exponent);
    reload();
}

void MainWindow::locateStudio()
{
    const QString folder =
        QFileDialog::getExistingDirectory(this, tr("Locate Vellor Studio Installation Directory"));
    if (folder.isEmpty())
        return;
    if (CookingAliases::rememberStudio(folder))
        m_aliases.forget();
    else
        QMessageBox::warning(
            this, tr("Locate Vellor Studio"),
            tr("'%1' holds no Vellor Studio packages.").arg(QDir::toNativeSeparators(folder)));
}

void MainWindow::onLanguageSelectionChanged(QAction* action)
{
    Orn::Core::languageSetting.write(action->data().toString());
    QMessageBox::information(
        this, tr("Language changed"),
        tr("The new selected language will only be used after a restart of the software"));
}

void MainWindow::openAboutDialog()
{
    AboutDialog(this).exec();
}

void MainWindow::onAboutOrnexClicked()
{
    QDesktopServices::openUrl(Installation::makerSite());
}

void MainWindow::onGiveFeedbackClicked()
{
    QDesktopServices::openUrl(Installation::feedbackSite());
}

void MainWindow::displayOnlineDocumentation()
{
    QDesktopServices::openUrl(Installation::documentationSite());
}

void MainWindow::onSamplesCalled()
{
    const QString folder = Installation::samplesFolder();
    if (folder.isEmpty())
        QMessageBox::information(this, tr("Samples directory not Found"),
                                 tr("Samples are not found in installation directory."));
    else
        QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
}

// ---- Drag and drop

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (std::any_of(urls.begin(), urls.end(), isDroppable))
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    QStringList authoringFiles;
    for (const QUrl& url : event->mimeData()->urls()) {
        const QString path = url.toLocalFile();
        if (!isDroppable(url))
            continue;
        if (fileKind(path) == FileKind::Authoring) {
            authoringFiles << path;
            continue;
        }
        loadFile(path);
        break;
    }
    if (authoringFiles.isEmpty())
        QMainWindow::dropEvent(event);
    else
        loadTogether(authoringFiles);
}

} // namespace Zph::Applications::Player
