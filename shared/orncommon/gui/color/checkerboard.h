#pragma once

#include <QBrush>
#include <QColor>

namespace Orn::Core {
struct ColorRGBAf;
}

namespace Orn::Gui {

/// A board of two greys, to be seen through transparent colours. `cell` is the side of a square in pixels.
QBrush checkerboardBrush(int cell = 6);

/// The colour as a screen shows it, channels clamped to 0 to 1.
QColor toQColor(const Core::ColorRGBAf& color);

} // namespace Orn::Gui
