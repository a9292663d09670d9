#pragma once

#include <QLineEdit>

namespace Zph::Applications::Player {

/// A line for the path of a folder, onto which folders and files can be dropped.
class FolderEdit : public QLineEdit
{
    Q_OBJECT

public:
    explicit FolderEdit(QWidget* parent = nullptr);

    /// Absolute; empty for a blank line.
    QString folder() const;
    void setFolder(const QString& path);

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
};

} // namespace Zph::Applications::Player
