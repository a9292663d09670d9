#include "orncommon/gui/dockwidgettitlebarbutton.h"

#include <QAction>

namespace Orn::Gui {

DockWidgetTitleBarButton::DockWidgetTitleBarButton(QAction* action, QWidget* parent) : QToolButton(parent)
{
    setDefaultAction(action);
    setAutoRaise(true);
    setFocusPolicy(Qt::NoFocus);
    setToolButtonStyle(Qt::ToolButtonIconOnly);
    setIconSize(QSize(12, 12));
}

} // namespace Orn::Gui
