#pragma once

#include "orncommon/gui/aboutdialog.h"

namespace Zph::Applications::Player {

/// The About box: a picture, the versions of the program, its engine, cooker and linker, and the copyright
/// line.
class AboutDialog : public Orn::Gui::AboutDialog
{
    Q_OBJECT

public:
    explicit AboutDialog(QWidget* parent);

    /// The version lines as rich text, one paragraph each.
    static QString versionText();
};

} // namespace Zph::Applications::Player
