#pragma once

#include <QMenu>

namespace Zph::Applications::Player {

/// What the pattern of base names may hold. An action's data is the token to insert; that of "Reset pattern"
/// has none.
class PatternMenu : public QMenu
{
    Q_OBJECT

public:
    explicit PatternMenu(QWidget* parent = nullptr);

    /// The same as text, one line for each token.
    static QString help();
};

} // namespace Zph::Applications::Player
