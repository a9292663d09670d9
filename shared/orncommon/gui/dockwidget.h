#pragma once

#include <QDockWidget>
#include <QList>
#include <QRect>

namespace Orn::Gui {

class DockWidgetTitleBar;

/// One dock of the main window, with a title bar for its docked state and another for its floating one.
///
/// Title and icon follow the widget inside. While the dock shares a tab bar with others, the tab stands for
/// the title bar, and the bar folds away.
class DockWidget : public QDockWidget
{
    Q_OBJECT

public:
    explicit DockWidget(const QString& title, QWidget* parent = nullptr);

    /// Puts a widget inside and takes over its title and icon, where it has them. The dock owns it then.
    void setContents(QWidget* contents);

    /// "Dock window" or "Undock window", by the state.
    QAction* floatAction() const { return m_floatAction; }
    QAction* closeAction() const { return m_closeAction; }
    /// "Maximize window" or "Restore window": for a floating dock.
    QAction* maximizeAction() const { return m_maximizeAction; }

    void setTabbed(bool tabbed);

    /// Where the dock is, or last was, on the desktop while floating; null if it never was.
    QRect floatingGeometry() const { return m_floatingGeometry; }

Q_SIGNALS:
    /// The widget inside was deleted or taken out.
    void contentsLost();

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void createActions();
    void createTitleBars();
    void updateTitleBar();
    void updateActions();
    void adoptTitle(const QWidget& contents);
    void toggleFloating();
    void toggleMaximized();

    QAction* m_floatAction = nullptr;
    QAction* m_closeAction = nullptr;
    QAction* m_maximizeAction = nullptr;
    DockWidgetTitleBar* m_dockedTitleBar = nullptr;
    DockWidgetTitleBar* m_floatingTitleBar = nullptr;
    QWidget* m_contents = nullptr;
    QRect m_floatingGeometry;
};

} // namespace Orn::Gui
