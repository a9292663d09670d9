// The window's documents: every way of opening one, and what the loader asks of the window meanwhile.

#include "mainwindow.h"

#include "applications/player/description/packagemodel.h"
#include "applications/player/metadata/metadataloader.h"
#include "applications/player/metadata/metadatawriter.h"
#include "applications/player/session/engine.h"
#include "applications/player/session/enginerecords.h"
#include "applications/player/session/packagecooker.h"
#include "applications/player/session/packagelinker.h"
#include "applications/player/session/static.h"
#include "applications/player/shell/errorconsole.h"
#include "applications/player/shell/filekinds.h"
#include "applications/player/shell/installation.h"
#include "applications/player/shell/mainactions.h"
#include "applications/player/timeline/timeline.h"
#include "applications/player/tweaks/tweakslist.h"
#include "applications/player/views/view2d.h"
#include "applications/player/views/viewoutput2d.h"

#include <QCoreApplication>
#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QStatusBar>
#include <QUrl>

#include <algorithm>

namespace Zph::Applications::Player {

namespace {

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
        isLoaded = loadMetadataFile(filepath);
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

bool MainWindow::loadMetadataFile(const QString& filepath)
{
    MetadataLoader metadata([this](const QString& title, const QString& filter, const QString& path) {
        return QFileDialog::getOpenFileName(this, title, QFileInfo(path).absolutePath(), filter);
    });
    const auto made = metadata.load(filepath);
    if (!made) {
        if (!metadata.error().isEmpty())
            message(2, metadata.error());
        return false;
    }
    ++m_loadCounter; // one generation, of what the values and the output ask for
    const bool isLoaded = m_loader.loadArchive(made->archive, filepath);
    if (isLoaded)
        bringBack(made->preset, made->outputIdentifier);
    --m_loadCounter;
    if (isLoaded)
        generate();
    return isLoaded;
}

/// The values and the output of a record in the package that has just been opened.
void MainWindow::bringBack(const PresetDescription& values, const QString& outputIdentifier)
{
    for (const PackageGraph& graph : m_package->graphs())
        if (QString(graph.key).remove(' ') == values.pkgurl)
            m_tweaks->applyMetadataPreset(values, graph.key);
    tellHiddenOutputs();
    const QVector<PackageOutput>& outputs = m_package->outputs();
    const auto output = std::find_if(outputs.begin(), outputs.end(), [&](const PackageOutput& candidate) {
        const auto described = MetadataWriter::Bitmap::of(candidate);
        return described.packageUrl == values.pkgurl && described.identifier == outputIdentifier;
    });
    if (output != outputs.end() && m_view2D->firstView())
        m_view2D->firstView()->showOutput(output->uid);
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
    m_archivePending = true;
    updateRenderDialog();
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
    updateRenderDialog();
    m_tweaks->clear();
    for (ViewOutput* view : m_viewers)
        view->clearView();
}

// ---- Recent files

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

// ---- Drag and drop

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (std::any_of(urls.begin(), urls.end(), isDroppable))
        event->acceptProposedAction();
}

/// Whether a dropped file is a picture for an input. An exported one is a document, but for the panel itself.
bool MainWindow::isForPanel(const QString& path, const QPoint& position) const
{
    if (!m_package || !isImageFile(path))
        return false;
    return !MetadataLoader::isAtEndOf(path) ||
           (m_tweaks->isVisible() && m_tweaks->rect().contains(m_tweaks->mapFromGlobal(position)));
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
        const QPoint position = mapToGlobal(event->posF().toPoint());
        if (!isForPanel(path, position) || !m_tweaks->dropImage(path, position))
            loadFile(path);
        break;
    }
    if (authoringFiles.isEmpty())
        QMainWindow::dropEvent(event);
    else
        loadTogether(authoringFiles);
}

} // namespace Zph::Applications::Player
