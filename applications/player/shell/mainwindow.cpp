#include "mainwindow.h"

#include "applications/player/output/dialog/render.h"
#include "applications/player/session/engine.h"
#include "applications/player/session/sessionsettings.h"
#include "applications/player/session/static.h"
#include "applications/player/shell/aboutdialog.h"
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
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QStatusBar>
#include <QTimer>
#include <QUrl>

#include <algorithm>

namespace Zph::Applications::Player {

namespace {

const Orn::Core::Log::ChannelLogger logger("Engine");

constexpr int kStatusBarHeight = 16;
constexpr int kParametersWidth = 440;
constexpr int kFirstSizeExponent = 3, kLastSizeExponent = 15, kUnsetSizeExponent = 11;

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
    connect(actions.exportBitmap, &QAction::triggered, this, &MainWindow::openRenderDialog);
    connect(actions.reExport, &QAction::triggered, this, &MainWindow::renderWithPreviousSettings);
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
    if (m_render)
        m_render->close(); // which ends an export
    WindowGeometry::save(*this);
    ShellSettings::layout.write(saveState());
    QMainWindow::closeEvent(event);
}

void MainWindow::onResetLayoutActionTrigerred(bool)
{
    restoreState(ShellSettings::defaultLayout.read());
}

// ---- The generation

void MainWindow::generate()
{
    // A generation follows whatever is postponed.
    if (m_loadCounter != 0 || m_isTimeMoving || (m_isGenerating && m_postponed) || postponed([] {}))
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

void MainWindow::requiredOutputs(std::set<quint32>& uids)
{
    if (m_render)
        m_render->getRequiredOutputs(uids);
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
        generationStatus(tr("Generating %1 textures...").arg(outputs));
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
    if (m_render)
        m_render->sendOutputImage(desc.uid, result);
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
    tellHiddenOutputs();
}

void MainWindow::tellHiddenOutputs()
{
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
    generationStatus(tr("Generating %1%...").arg(percent));
    if (m_render && m_render->isRunning())
        m_render->generationProgress(percent);
    else
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

/// Tells of a generation for as long as it goes on, or until there is something else to tell.
void MainWindow::generationStatus(const QString& text)
{
    m_generationText = text;
    status(text);
}

void MainWindow::generationFinished(float seconds)
{
    m_timeLabel->setText(tr("%1 ms").arg(int(seconds * 1000.0f)));
    if (statusBar()->currentMessage() == m_generationText)
        statusBar()->clearMessage();
    if (m_render)
        m_render->generationFinished();
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

// ---- Menus

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

} // namespace Zph::Applications::Player
