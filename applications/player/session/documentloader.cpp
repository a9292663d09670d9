#include "documentloader.h"

#include "applications/player/description/descriptionfile.h"
#include "applications/player/session/packagearchive.h"
#include "applications/player/session/packagecooker.h"
#include "applications/player/session/packagelinker.h"
#include "applications/player/session/static.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace Zph::Applications::Player {

namespace {

constexpr int kReloadDelay = 1000; // ms

bool hasSuffix(const QString& path, const char* suffix)
{
    return QFileInfo(path).suffix().compare(QLatin1String(suffix), Qt::CaseInsensitive) == 0;
}

/// A file with the same base name in the same folder.
QString beside(const QString& path, const char* suffix)
{
    const QFileInfo info(path);
    return info.dir().filePath(info.baseName() + '.' + QLatin1String(suffix));
}

/// The binary that a description describes: the assembly beside it, or else a binary, which may carry one
/// more part in its name.
QString binaryOfDescription(const QString& path)
{
    const QString assembly = beside(path, "vlrasm");
    if (QFileInfo::exists(assembly))
        return assembly;
    const QFileInfo info(path);
    const QStringList found = info.dir().entryList(
        {info.baseName() + ".*.vlrbin", info.baseName() + ".vlrbin"}, QDir::Files, QDir::Name);
    return found.isEmpty() ? assembly : info.dir().filePath(found.first());
}

} // namespace

DocumentLoader::DocumentLoader(DocumentHost& host, QObject* parent) : QObject(parent), m_host(host)
{
    m_reloadTimer.setSingleShot(true);
    m_reloadTimer.setInterval(kReloadDelay);
    connect(&m_reloadTimer, &QTimer::timeout, this, &DocumentLoader::reloadRequested);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &DocumentLoader::onFileChanged);
}

bool DocumentLoader::loadVlrFile(const QStringList& filepaths)
{
    PackageCooker cooker(m_host, m_host.cookingOptions(filepaths));
    if (!cooker.cook(filepaths))
        return false;
    parseDescription(cooker.description(), m_description);
    clearWatcher();
    Static::instance().remoteMode = false;
    m_loadedFiles = filepaths;
    m_host.setDocumentTitle(QFileInfo(filepaths.first()).fileName() + (filepaths.size() > 1 ? " [...]" : ""));
    QByteArray bytes = cooker.assembly();
    QBuffer assembly(&bytes);
    assembly.open(QIODevice::ReadOnly);
    const QByteArray description = cooker.description(); // the cooker's, and goes with it
    const bool isLoaded =
        loadVlrasm(assembly, false, QByteArray(description.constData(), description.size()));
    m_watcher.addPaths(filepaths);
    return isLoaded;
}

bool DocumentLoader::loadVlrarFile(const QString& filepath)
{
    QFile file(filepath);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    m_loadedFiles = QStringList(filepath);
    Static::instance().remoteMode = false;
    m_host.setDocumentTitle(QFileInfo(filepath).fileName());
    const bool isLoaded = loadVlrasm(file, true);
    if (!filepath.startsWith(':'))
        m_watcher.addPath(filepath);
    return isLoaded;
}

bool DocumentLoader::loadArchive(const QByteArray& archive, const QString& filepath)
{
    m_loadedFiles = QStringList(filepath);
    Static::instance().remoteMode = false;
    m_host.setDocumentTitle(QFileInfo(filepath).fileName());
    QByteArray bytes = archive;
    QBuffer device(&bytes);
    device.open(QIODevice::ReadOnly);
    const bool isLoaded = loadVlrasm(device, true);
    m_watcher.addPath(filepath);
    return isLoaded;
}

bool DocumentLoader::loadBinOrAsmFile(const QString& filepath)
{
    const bool isXml = hasSuffix(filepath, "xml");
    const QString xml = isXml ? filepath : beside(filepath, "xml");
    const QString binary = isXml ? binaryOfDescription(filepath) : filepath;
    QFile file(binary);
    if (!file.open(QIODevice::ReadOnly)) {
        m_host.message(2, tr("Cannot open file '%1'").arg(binary));
        return false;
    }
    QByteArray description;
    const bool hasDescription = readDescription(xml, description);
    clearWatcher();
    Static::instance().remoteMode = false;
    m_loadedFiles = QStringList(filepath);
    m_host.setDocumentTitle(QFileInfo(filepath).fileName());
    const bool isAssembly = hasSuffix(binary, "vlrasm");
    if (!isAssembly)
        m_source = {};
    const bool isLoaded = isAssembly ? loadVlrasm(file, false, description) : m_host.playBinary(file);
    m_watcher.addPath(binary);
    if (hasDescription)
        m_watcher.addPath(xml);
    return isLoaded;
}

bool DocumentLoader::readDescription(const QString& filepath, QByteArray& text)
{
    m_description.clear();
    QFile file(filepath);
    if (!file.open(QIODevice::ReadOnly)) {
        m_host.message(1, tr("Cannot load Vellor XML description file"));
        return false;
    }
    text = file.readAll();
    QString reason;
    if (parseDescription(text, m_description, &reason)) {
        m_host.status(tr("'%1' Loaded.").arg(filepath));
    } else {
        m_host.message(1, tr("Cannot load Vellor XML description file"));
        m_host.message(1, filepath + ": " + reason);
    }
    return true;
}

bool DocumentLoader::loadVlrasm(QIODevice& device, bool isArchive, const QByteArray& description)
{
    QByteArray package = device.readAll();
    QBuffer source(&package);
    source.open(QIODevice::ReadOnly);
    PackageLinker linker(m_host, Static::instance().sizeLimit());
    if (!linker.link(source))
        return false;
    m_source = isArchive ? Source{package, {}, {}}
                         : Source{{}, QByteArray(package.constData(), package.size()), description};
    if (isArchive)
        linker.takeDescription(m_description);
    QByteArray bytes = linker.binary();
    QBuffer binary(&bytes);
    binary.open(QIODevice::ReadOnly);
    return m_host.playBinary(binary);
}

QByteArray DocumentLoader::archive() const
{
    if (!m_source.archive.isEmpty() || m_source.assembly.isEmpty())
        return m_source.archive;
    return packArchive(m_source.assembly, m_source.description);
}

QString DocumentLoader::archiveFileName() const
{
    return m_loadedFiles.isEmpty() ? QString()
                                   : QFileInfo(m_loadedFiles.first()).completeBaseName() + ".vlrar";
}

void DocumentLoader::remoteVlrbinReceived(const QByteArray& buffer)
{
    m_host.stopGeneration();
    m_remoteBuffer.close();
    m_remoteBuffer.setData(buffer);
    QMetaObject::invokeMethod(this, &DocumentLoader::remoteReceived, Qt::QueuedConnection);
}

bool DocumentLoader::loadVlrbinRemote()
{
    clearWatcher();
    Static::instance().remoteMode = true;
    m_loadedFiles.clear();
    m_description.clear();
    m_source = {};
    m_host.setDocumentTitle(tr("Remote file"));
    m_remoteBuffer.open(QIODevice::ReadOnly);
    const bool isLoaded = m_host.playBinary(m_remoteBuffer);
    m_remoteBuffer.close();
    return isLoaded;
}

void DocumentLoader::onFileChanged(const QString& path)
{
    emit documentFileChanged();
    if (!m_host.isAutoReloadOn())
        return;
    // In a pair of binary and description the description counts: tools write it last.
    if (m_watcher.files().size() > 1 && !hasSuffix(path, "xml"))
        return;
    m_host.stopGeneration();
    m_reloadTimer.start();
}

void DocumentLoader::clearWatcher()
{
    if (!m_watcher.files().isEmpty())
        m_watcher.removePaths(m_watcher.files());
}

} // namespace Zph::Applications::Player
