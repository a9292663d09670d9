#pragma once

#include <QRect>
#include <Qt>

class QWidget;

namespace Zph::Applications::Player {

/// Where the window stood when the program ended, kept in the settings store.
namespace WindowGeometry {

/// Moves and shrinks frame so that it lies within area (the union of all screens): no larger than area; a top
/// above it goes to 10 pixels below its top, a bottom below it comes up so that the window fits, and likewise
/// sideways.
QRect clamped(QRect frame, const QRect& area);

/// Union of the available geometry of all screens.
QRect screensArea();

/// 9/10 of the primary screen's available geometry in each direction.
QSize initialSize();

void save(const QWidget& window);
/// Restores position, size and state; a window that was minimised comes back maximised.
void restore(QWidget& window);

} // namespace WindowGeometry

} // namespace Zph::Applications::Player
