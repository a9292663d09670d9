#pragma once

#include <QPointer>
#include <QWidget>

namespace Orn::Gui {

class DockWidget;

/// What a dock's tab carries at its right end: buttons for the actions of the dock.
///
/// Its object name is "customTabButton", and the property tabIsCurrent says whether its tab is the current
/// one: a style sheet may use both.
class DockTabButton : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(bool tabIsCurrent READ tabIsCurrent WRITE setTabIsCurrent)

public:
    explicit DockTabButton(DockWidget& dock, QWidget* parent = nullptr);

    DockWidget* dock() const { return m_dock; }

    bool tabIsCurrent() const { return m_tabIsCurrent; }
    void setTabIsCurrent(bool current);

private:
    QPointer<DockWidget> m_dock;
    bool m_tabIsCurrent = false;
};

} // namespace Orn::Gui
