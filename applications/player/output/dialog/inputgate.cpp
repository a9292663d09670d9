#include "inputgate.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>
#include <QWindow>

namespace Zph::Applications::Player::InputGate {

namespace {

bool isInput(QEvent::Type type)
{
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::ShortcutOverride:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletRelease:
        return true;
    default:
        return false;
    }
}

class Gate : public QObject
{
public:
    explicit Gate(const QWidget& window) : m_window(window) { qApp->installEventFilter(this); }

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override
    {
        return isInput(event->type()) && !isOpen(*receiver);
    }

private:
    bool isOpen(QObject& receiver) const
    {
        const QWidget* modal = QApplication::activeModalWidget();
        if (auto* widget = qobject_cast<QWidget*>(&receiver))
            return widget->window() == &m_window || (modal && widget->window() == modal);
        if (receiver.isWindowType())
            return &receiver == m_window.windowHandle() || (modal && &receiver == modal->windowHandle());
        return false;
    }

    const QWidget& m_window;
};

} // namespace

void processEvents(const QWidget& window)
{
    const Gate gate(window);
    QCoreApplication::processEvents();
}

} // namespace Zph::Applications::Player::InputGate
