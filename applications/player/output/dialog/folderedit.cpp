#include "folderedit.h"

#include <QDir>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

namespace Zph::Applications::Player {

namespace {

/// The first folder of what is dropped, or that of the first file; empty for anything else.
QString droppedFolder(const QMimeData& data)
{
    for (const QUrl& url : data.urls()) {
        const QFileInfo info(url.toLocalFile());
        if (url.isLocalFile() && info.exists())
            return info.isDir() ? info.absoluteFilePath() : info.absolutePath();
    }
    return {};
}

} // namespace

FolderEdit::FolderEdit(QWidget* parent) : QLineEdit(parent)
{
}

QString FolderEdit::folder() const
{
    const QString path = QDir::fromNativeSeparators(text().trimmed());
    return path.isEmpty() ? path : QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

void FolderEdit::setFolder(const QString& path)
{
    setText(QDir::toNativeSeparators(path));
    setCursorPosition(0);
}

void FolderEdit::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->setAccepted(!droppedFolder(*event->mimeData()).isEmpty());
    else
        QLineEdit::dragEnterEvent(event);
}

void FolderEdit::dragMoveEvent(QDragMoveEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
    else
        QLineEdit::dragMoveEvent(event);
}

void FolderEdit::dropEvent(QDropEvent* event)
{
    const QString folder = droppedFolder(*event->mimeData());
    if (folder.isEmpty()) {
        QLineEdit::dropEvent(event);
        return;
    }
    setFolder(folder);
    event->acceptProposedAction();
}

} // namespace Zph::Applications::Player
