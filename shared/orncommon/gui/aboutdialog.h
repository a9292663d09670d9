#pragma once

#include <QDialog>
#include <QPixmap>
#include <QString>

namespace Orn::Gui {

/// The box that says what a program is: its picture across the top, and a pane with texts below, both placed
/// and sized by the style sheet.
class AboutDialog : public QDialog
{
    Q_OBJECT

public:
    /// Texts may be rich; an empty one takes no room.
    struct Texts
    {
        QString title;
        QString subtitle;
        QString details;
        QString disclaimer;
    };

    AboutDialog(const QPixmap& picture, const Texts& texts, QWidget* parent = nullptr);
};

} // namespace Orn::Gui
