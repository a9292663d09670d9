#pragma once

#include <QWidget>

namespace Orn::Gui {

class DockWidget;

/// Base of a panel: a widget that LayoutManager places into an area.
///
/// The panel's window title and icon are those of its dock and tab, and may change at any time. Closing the
/// panel's dock hides it; deleting the panel takes the dock away.
class LayoutWidget : public QWidget
{
    Q_OBJECT

public:
    explicit LayoutWidget(QWidget* parent = nullptr, Qt::WindowFlags flags = {});

    /// The dock that holds this panel; null while it is in none.
    DockWidget* dockWidget() const;

    /// Shows the panel: opens its dock if it is closed, and brings its tab to the front.
    void raiseInLayout();
};

} // namespace Orn::Gui
