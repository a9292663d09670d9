#pragma once

class QString;
class QWidget;

namespace Zph::Applications::Player {

class Presets;

// Pops up the menu of what can be done with presets in a graph, under `button`. It goes when it is closed.
void popUpPresetsMenu(Presets& presets, QWidget* button, const QString& graphKey);

} // namespace Zph::Applications::Player
