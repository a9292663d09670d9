#pragma once

class QAction;
class QMenu;

namespace Zph::Applications::Player {

/// Fills the "Language" menu: "System" and one entry for each translation found, exclusive, the current one
/// checked. An entry carries the name of its locale as data; "System" carries an empty text.
void fillLanguageMenu(QMenu& menu);

/// Translators of the program and of Qt, by the language that the settings choose, owned by the application.
/// Honours the language that an installer left. Call once, ahead of the first widget.
void installTranslators();

} // namespace Zph::Applications::Player
