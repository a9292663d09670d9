#include "driver.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLocalSocket>
#include <QMainWindow>
#include <QMessageBox>
#include <QStatusBar>
#include <QTimer>

namespace {

QMainWindow* mainWindow()
{
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* window = qobject_cast<QMainWindow*>(widget))
            return window;
    return nullptr;
}

QString modalText()
{
    const QWidget* modal = QApplication::activeModalWidget();
    if (!modal)
        return {};
    const auto* box = qobject_cast<const QMessageBox*>(modal);
    return modal->windowTitle() + '|' + (box ? box->text() : QString());
}

int visibleWindows()
{
    int count = 0;
    for (const QWidget* widget : QApplication::topLevelWidgets())
        count += widget->isVisible();
    return count;
}

/// At the next turn of the event loop: what is asked for may open a dialog and return late.
template<class Function> QString later(Function function)
{
    QTimer::singleShot(0, qApp, function);
    return {};
}

void trigger(const QString& text)
{
    for (QObject* root : QApplication::topLevelWidgets())
        for (QAction* action : root->findChildren<QAction*>())
            if (action->text() == text)
                return action->trigger();
}

} // namespace

QObject* DriverPlugin::create(const QString&, const QString&)
{
    QTimer::singleShot(0, this, &DriverPlugin::start);
    return this;
}

void DriverPlugin::start()
{
    m_socket = new QLocalSocket(this);
    connect(m_socket, &QLocalSocket::readyRead, this, [this] {
        while (m_socket->canReadLine()) {
            const QString line = QString::fromUtf8(m_socket->readLine()).trimmed();
            const QString reply = answer(line.section(' ', 0, 0), line.section(' ', 1));
            m_socket->write(QString(reply).replace('\n', ' ').toUtf8() + '\n');
        }
    });
    m_socket->connectToServer(qEnvironmentVariable("VELLOR_TEST_DRIVER"));
}

QString DriverPlugin::answer(const QString& command, const QString& argument) const
{
    QMainWindow* window = mainWindow();
    auto* modal = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (command == "modal")
        return modalText();
    if (command == "windows")
        return QString::number(visibleWindows());
    if (command == "trigger")
        return later([argument] { trigger(argument); });
    if (modal && command == "accept")
        return later([modal] { modal->accept(); });
    if (modal && command == "reject")
        return later([modal] { modal->reject(); });
    if (window && command == "title")
        return window->windowTitle();
    if (window && command == "status")
        return window->statusBar()->currentMessage();
    if (window && command == "geometry")
        return QStringLiteral("%1 %2 %3 %4")
            .arg(window->x())
            .arg(window->y())
            .arg(window->width())
            .arg(window->height());
    if (window && command == "close")
        return later([window] { window->close(); });
    return {};
}
