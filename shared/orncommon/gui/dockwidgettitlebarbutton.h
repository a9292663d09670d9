#pragma once

#include <QToolButton>

namespace Orn::Gui {

/// A small flat button for one action of a dock, in its title bar or in its tab.
class DockWidgetTitleBarButton : public QToolButton
{
    Q_OBJECT

public:
    /// The action must outlive the button; its text is the tooltip.
    explicit DockWidgetTitleBarButton(QAction* action, QWidget* parent = nullptr);
};

} // namespace Orn::Gui
