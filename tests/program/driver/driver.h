#pragma once

#include <QGenericPlugin>

class QLocalSocket;

/// Drives the program that loads it (QT_QPA_GENERIC_PLUGINS=vellortestdriver) for a test. It connects to the
/// local server named by VELLOR_TEST_DRIVER, takes one command a line and answers each with one line:
///
///   title                  of the main window
///   status                 the text of its status bar
///   modal                  "TITLE|TEXT" of the modal dialog, or nothing
///   accept, reject         ends the modal dialog
///   trigger TEXT           the action with this text
///   windows                how many windows are to be seen
///   geometry               of the main window: X Y WIDTH HEIGHT
///   close                  closes the main window
class DriverPlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "driver.json")

public:
    QObject* create(const QString& name, const QString& specification) override;

private:
    void start();
    QString answer(const QString& command, const QString& argument) const;

    QLocalSocket* m_socket = nullptr;
};
