#pragma once

#include "applications/player/session/cookingaliases.h"
#include "applications/player/session/packagelistener.h"

#include <QBuffer>
#include <QDomDocument>
#include <QFileSystemWatcher>
#include <QObject>
#include <QStringList>
#include <QTimer>

namespace Zph::Applications::Player {

struct CookingOptions;

/// What the loader asks of the program that the document opens in. Called on the main thread.
class DocumentHost : public PackageListener
{
public:
    /// The name of the document for the window's title; empty when there is none.
    virtual void setDocumentTitle(const QString& title) = 0;
    /// What the user chose for cooking these authoring files.
    virtual CookingOptions cookingOptions(const QStringList& filepaths) = 0;
    /// The end of every road: the open device holds a binary package, description() its description. False,
    /// with the document gone, when the engine refuses it.
    virtual bool playBinary(QIODevice& binary) = 0;
    /// Asks a running generation to end soon.
    virtual void stopGeneration() = 0;
    virtual bool isAutoReloadOn() const = 0;
};

/// Turns files of every kind into a binary package and its description, and has the host play it.
///
/// It remembers what "Reload" reads again and watches the files of the document. Each way of loading says
/// whether a document plays; what went wrong has been told to the host. A failure ahead of playBinary()
/// leaves the document that was open. Main thread.
class DocumentLoader : public QObject
{
    Q_OBJECT

public:
    explicit DocumentLoader(DocumentHost& host, QObject* parent = nullptr);

    bool loadVlrFile(const QStringList& filepaths);
    bool loadVlrarFile(const QString& filepath);
    /// An archive that `filepath`, another kind of file, led to.
    bool loadArchive(const QByteArray& archive, const QString& filepath);
    /// An assembly, a binary, or the description that lies beside one of them.
    bool loadBinOrAsmFile(const QString& filepath);

    /// Keeps a package that came over the remote link and emits remoteReceived(), queued: the load runs at
    /// the next turn of the event loop, outside any engine callback.
    void remoteVlrbinReceived(const QByteArray& buffer);
    bool loadVlrbinRemote();

    const QDomDocument& description() const { return m_description; }
    /// What Reload reads again; empty for a remote document and when nothing was opened.
    const QStringList& loadedFiles() const { return m_loadedFiles; }

    /// The document as an archive: what it was linked from. Empty for a binary, which can't go back to one.
    QByteArray archive() const;
    bool hasArchive() const { return !m_source.archive.isEmpty() || !m_source.assembly.isEmpty(); }
    /// The file name of archive(), beside the document's file; empty for a remote document.
    QString archiveFileName() const;

signals:
    /// A file of the document changed and auto-reload is on: time to reload.
    void reloadRequested();
    /// A file of the document changed.
    void documentFileChanged();
    void remoteReceived();

private:
    /// What the document was linked from: an archive, or an assembly with the text of its description.
    struct Source
    {
        QByteArray archive, assembly, description;
    };

    /// `description` is that of an assembly.
    bool loadVlrasm(QIODevice& device, bool isArchive, const QByteArray& description = {});
    bool readDescription(const QString& filepath, QByteArray& text);
    void onFileChanged(const QString& path);
    void clearWatcher();

    DocumentHost& m_host;
    QStringList m_loadedFiles;
    QDomDocument m_description;
    Source m_source;
    QFileSystemWatcher m_watcher;
    QTimer m_reloadTimer;
    QBuffer m_remoteBuffer;
};

} // namespace Zph::Applications::Player
