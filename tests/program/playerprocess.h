#pragma once

#include <QLocalServer>
#include <QProcess>
#include <QTemporaryDir>

#include <memory>

namespace Zph::Applications::Player::Tests {

/// The program as it is shipped, in a process of its own with a home of its own, driven from within
/// (driver/driver.h).
class PlayerProcess
{
public:
    explicit PlayerProcess(const QString& program = QStringLiteral(VELLOR_TEST_BINARIES "/vellor-player"));
    ~PlayerProcess();

    QString home() const { return m_home.path(); }
    QString settingsFile() const { return m_home.filePath("config/Ornex/Vellor Player.conf"); }
    QString logFile() const { return m_home.filePath("data/Ornex/Vellor Player/log_player.txt"); }
    void setWorkingDirectory(const QString& path) { m_process.setWorkingDirectory(path); }

    /// Starts it and waits until it can be asked; false if it ended first.
    bool start(const QStringList& arguments);
    /// Runs it to its end with nobody asking. The exit code, or -1 if it crashed or never ends.
    int run(const QStringList& arguments);
    /// What the command is answered with.
    QString ask(const QString& command);
    /// Asks again until that is the answer, for some seconds.
    bool waitFor(const QString& command, const QString& expected);
    /// Waits for the end; as run().
    int exitCode();
    QByteArray output() { return m_process.readAllStandardOutput(); }

private:
    QTemporaryDir m_home;
    QLocalServer m_server;
    QProcess m_process;
    QLocalSocket* m_socket = nullptr;
};

} // namespace Zph::Applications::Player::Tests
