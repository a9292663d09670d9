#include "orncommon/gui/layoutwidget.h"

#include "orncommon/gui/dockwidget.h"

namespace Orn::Gui {

LayoutWidget::LayoutWidget(QWidget* parent, Qt::WindowFlags flags) : QWidget(parent, flags)
{
}

DockWidget* LayoutWidget::dockWidget() const
{
    return qobject_cast<DockWidget*>(parentWidget());
}

void LayoutWidget::raiseInLayout()
{
    if (DockWidget* dock = dockWidget()) {
        dock->show();
        dock->raise();
    } else {
        show();
    }
}

} // namespace Orn::Gui
