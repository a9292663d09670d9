// A dock switches its title bar when it starts or stops floating. QDockWidget re-creates a floating window in
// that moment as if it were being dragged, outside the window manager's reach; a drag ends that state by
// itself, a click on a button does not, so updateTitleBar() does it then.

#include "orncommon/gui/dockwidget.h"

#include "orncommon/gui/dockwidgettitlebar.h"

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QMouseEvent>

namespace Orn::Gui {

DockWidget::DockWidget(const QString& title, QWidget* parent) : QDockWidget(title, parent)
{
    createActions();
    createTitleBars();
    connect(this, &QDockWidget::topLevelChanged, this, &DockWidget::updateTitleBar);
    updateTitleBar();
}

void DockWidget::createActions()
{
    m_floatAction = new QAction(this);
    m_maximizeAction = new QAction(this);
    m_closeAction = new QAction(QIcon(QStringLiteral(":/orn/gui/icons/close.svg")), tr("Close window"), this);
    connect(m_floatAction, &QAction::triggered, this, &DockWidget::toggleFloating);
    connect(m_maximizeAction, &QAction::triggered, this, &DockWidget::toggleMaximized);
    connect(m_closeAction, &QAction::triggered, this, &QWidget::close);
}

void DockWidget::createTitleBars()
{
    m_dockedTitleBar = new DockWidgetTitleBar({m_floatAction, m_closeAction}, this);
    m_floatingTitleBar = new DockWidgetTitleBar({m_floatAction, m_maximizeAction, m_closeAction}, this);
    for (DockWidgetTitleBar* bar : {m_dockedTitleBar, m_floatingTitleBar}) {
        bar->setTitle(windowTitle().toUpper());
        bar->hide();
        bar->installEventFilter(this);
    }
}

void DockWidget::setContents(QWidget* contents)
{
    m_contents = contents;
    contents->installEventFilter(this);
    adoptTitle(*contents);
    setWidget(contents);
}

void DockWidget::adoptTitle(const QWidget& contents)
{
    if (!contents.windowTitle().isEmpty())
        setWindowTitle(contents.windowTitle());
    if (!contents.windowIcon().isNull() && contents.testAttribute(Qt::WA_SetWindowIcon))
        setWindowIcon(contents.windowIcon());
}

void DockWidget::setTabbed(bool tabbed)
{
    m_dockedTitleBar->setFolded(tabbed);
}

bool DockWidget::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::WindowTitleChange:
        for (DockWidgetTitleBar* bar : {m_dockedTitleBar, m_floatingTitleBar})
            bar->setTitle(windowTitle().toUpper());
        break;
    case QEvent::WindowIconChange:
        for (DockWidgetTitleBar* bar : {m_dockedTitleBar, m_floatingTitleBar})
            bar->setIcon(windowIcon());
        break;
    case QEvent::WindowStateChange:
        updateActions();
        break;
    case QEvent::Move:
    case QEvent::Resize:
        if (isFloating() && !isMaximized())
            m_floatingGeometry = QRect(pos(), size());
        break;
    case QEvent::ChildRemoved:
        // Only the address is compared: the child may be half destroyed.
        if (m_contents && static_cast<QChildEvent*>(event)->child() == m_contents) {
            m_contents->removeEventFilter(this);
            m_contents = nullptr;
            Q_EMIT contentsLost();
        }
        break;
    default:
        break;
    }
    return QDockWidget::event(event);
}

bool DockWidget::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_dockedTitleBar || watched == m_floatingTitleBar) {
        if (event->type() == QEvent::MouseButtonRelease &&
            static_cast<QMouseEvent*>(event)->button() == Qt::MiddleButton) {
            m_floatAction->activate(QAction::Trigger);
            return true;
        }
    } else if (m_contents && watched == m_contents) {
        if (event->type() == QEvent::WindowTitleChange || event->type() == QEvent::WindowIconChange)
            adoptTitle(*m_contents);
    }
    return QDockWidget::eventFilter(watched, event);
}

void DockWidget::updateTitleBar()
{
    const bool floating = isFloating();
    DockWidgetTitleBar* bar = floating ? m_floatingTitleBar : m_dockedTitleBar;
    if (titleBarWidget() != bar) {
        setTitleBarWidget(bar);
        bar->show();
        (floating ? m_dockedTitleBar : m_floatingTitleBar)->hide();
    }
    const bool dragged = QApplication::mouseButtons().testFlag(Qt::LeftButton) && QWidget::mouseGrabber();
    if (floating && !dragged && windowFlags().testFlag(Qt::X11BypassWindowManagerHint)) {
        const bool visible = isVisible();
        setWindowFlag(Qt::X11BypassWindowManagerHint, false);
        setVisible(visible);
    }
    updateActions();
}

void DockWidget::updateActions()
{
    m_floatAction->setText(isFloating() ? tr("Dock window") : tr("Undock window"));
    m_floatAction->setIcon(QIcon(isFloating() ? QStringLiteral(":/orn/gui/icons/dock.svg")
                                              : QStringLiteral(":/orn/gui/icons/undock.svg")));
    m_maximizeAction->setText(isMaximized() ? tr("Restore window") : tr("Maximize window"));
    m_maximizeAction->setIcon(QIcon(isMaximized() ? QStringLiteral(":/orn/gui/icons/restore.svg")
                                                  : QStringLiteral(":/orn/gui/icons/maximize.svg")));
}

void DockWidget::toggleFloating()
{
    if (isMaximized())
        showNormal();
    setFloating(!isFloating());
}

void DockWidget::toggleMaximized()
{
    if (isMaximized())
        showNormal();
    else
        showMaximized();
}

} // namespace Orn::Gui
