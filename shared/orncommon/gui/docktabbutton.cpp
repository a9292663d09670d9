#include "orncommon/gui/docktabbutton.h"

#include "orncommon/gui/dockwidget.h"
#include "orncommon/gui/dockwidgettitlebarbutton.h"

#include <QHBoxLayout>
#include <QStyle>

namespace Orn::Gui {

DockTabButton::DockTabButton(DockWidget& dock, QWidget* parent) : QWidget(parent), m_dock(&dock)
{
    setObjectName(QStringLiteral("customTabButton"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 0, 0, 0);
    layout->setSpacing(0);
    for (QAction* action : {dock.floatAction(), dock.closeAction()})
        layout->addWidget(new DockWidgetTitleBarButton(action, this));
}

void DockTabButton::setTabIsCurrent(bool current)
{
    if (m_tabIsCurrent == current)
        return;
    m_tabIsCurrent = current;
    // Rules that name a property are matched again only when the widget is polished.
    style()->unpolish(this);
    style()->polish(this);
    for (QWidget* button : findChildren<QWidget*>()) {
        button->style()->unpolish(button);
        button->style()->polish(button);
    }
}

} // namespace Orn::Gui
