#pragma once

#include <QIcon>

namespace Zph::Applications::Player {

// The icon of a resource, loaded once for all rows and kept until the application goes. With `onPath` a
// second picture for the checked state. Main thread.
const QIcon& sharedIcon(const QString& path, const QString& onPath = QString());

// The pin of a tweak and of the button for all of them.
const QIcon& pinIcon();

// The arrow of a roll, for the checked state of its button while it is open, and the other one.
const QIcon& foldIcon();

// The text of a tool tip that shows exactly what a description says, even where that looks like rich text.
QString plainToolTip(const QString& text);

} // namespace Zph::Applications::Player
