#pragma once

#include <QDialog>
#include <QString>

namespace Zph::Applications::Player {

/// The About box: a picture, the versions of the program, its engine, cooker and linker, and the copyright
/// line.
class AboutDialog : public QDialog
{
    Q_OBJECT

public:
    explicit AboutDialog(QWidget* parent);

    /// The version lines as rich text, one paragraph each.
    static QString versionText();
};

} // namespace Zph::Applications::Player
