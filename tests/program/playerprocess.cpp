#include "playerprocess.h"

#include <QElapsedTimer>
#include <QLocalSocket>
#include <QThread>

namespace Zph::Applications::Player::Tests {

namespace {

constexpr int kPatience = 30000; // ms

} // namespace

PlayerProcess::PlayerProcess(const QString& program)
{
    m_process.setProgram(program);
    m_process.setProcessChannelMode(QProcess::SeparateChannels);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", m_home.path());
    environment.insert("XDG_CONFIG_HOME", m_home.filePath("config"));
    environment.insert("XDG_DATA_HOME", m_home.filePath("data"));
    // The real thing where there is a display: the whole suite runs under one.
    environment.insert("QT_QPA_PLATFORM", environment.contains("DISPLAY") ? "xcb" : "offscreen");
    environment.insert("QT_PLUGIN_PATH", QStringLiteral(VELLOR_TEST_PLUGINS));
    environment.insert("QT_QPA_GENERIC_PLUGINS", "vellortestdriver");
    m_server.listen(m_home.filePath("driver"));
    environment.insert("VELLOR_TEST_DRIVER", m_server.fullServerName());
    m_process.setProcessEnvironment(environment);
}

PlayerProcess::~PlayerProcess()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished(kPatience);
    }
}

bool PlayerProcess::start(const QStringList& arguments)
{
    delete m_socket;
    m_socket = nullptr;
    m_process.setArguments(arguments);
    m_process.start();
    if (!m_server.waitForNewConnection(kPatience))
        return false;
    m_socket = m_server.nextPendingConnection();
    return m_socket != nullptr;
}

int PlayerProcess::run(const QStringList& arguments)
{
    m_process.setArguments(arguments);
    m_process.start();
    return exitCode();
}

QString PlayerProcess::ask(const QString& command)
{
    m_socket->write(command.toUtf8() + '\n');
    m_socket->flush();
    while (!m_socket->canReadLine())
        if (!m_socket->waitForReadyRead(kPatience))
            return {};
    return QString::fromUtf8(m_socket->readLine()).trimmed();
}

bool PlayerProcess::waitFor(const QString& command, const QString& expected)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < kPatience) {
        if (ask(command) == expected)
            return true;
        QThread::msleep(20);
    }
    return false;
}

int PlayerProcess::exitCode()
{
    const bool isOver = m_process.state() == QProcess::NotRunning || m_process.waitForFinished(kPatience);
    return isOver && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

} // namespace Zph::Applications::Player::Tests
