#include "orncommon/core/logmanager.h"

#include <QMutexLocker>

namespace Orn::Core::Log {

namespace {

// Counts up for its lifetime, also when an exception ends it.
class ScopedDepth
{
public:
    explicit ScopedDepth(int& depth) : m_depth(depth) { ++m_depth; }
    ~ScopedDepth() { --m_depth; }
    ScopedDepth(const ScopedDepth&) = delete;
    ScopedDepth& operator=(const ScopedDepth&) = delete;

private:
    int& m_depth;
};

// Noise from Qt's own network code, which nobody can do anything about.
bool isQtNetworkNoise(const QString& message)
{
    return message == QLatin1String("QObject::connect: Cannot connect "
                                    "(null)::stateChanged(QNetworkSession::State) to "
                                    "QNetworkReplyHttpImpl::_q_networkSessionStateChanged("
                                    "QNetworkSession::State)");
}

QMutex& qtHandlerMutex()
{
    static QMutex mutex(QMutex::Recursive);
    return mutex;
}

void handleQtMessage(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (isQtNetworkNoise(message))
        return;
    QMutexLocker lock(&qtHandlerMutex());
    const QString text =
        QStringLiteral("%1(%2): ").arg(QString::fromLatin1(context.file)).arg(context.line) + message;
    LogManager& manager = LogManager::instance();
    const Channel channel = QStringLiteral("Default");
    switch (type) {
    case QtDebugMsg:
        break;
    case QtWarningMsg:
        manager.warning(channel, text);
        break;
    case QtCriticalMsg:
    case QtFatalMsg:
        manager.error(channel, text);
        break;
    default:
        manager.info(channel, text);
        break;
    }
}

} // namespace

LogManager& LogManager::instance()
{
    static LogManager manager;
    return manager;
}

LogManager::LogManager() = default;

LogManager::~LogManager()
{
    // Qt may still warn after this, from destructors that run later. A handler that others installed stays.
    const QtMessageHandler previous = qInstallMessageHandler(nullptr);
    if (previous != handleQtMessage)
        qInstallMessageHandler(previous);
}

void LogManager::installQtMsgHandler()
{
    // Both must outlive the handler.
    qtHandlerMutex();
    instance();
    qInstallMessageHandler(handleQtMessage);
}

void LogManager::log(MsgSeverity severity, Channel const& channel, const QString& text)
{
    QMutexLocker lock(&m_mutex);
    m_pending.append({severity, channel, text});
    if (m_dispatchDepth != 0)
        return;
    const ScopedDepth depth(m_dispatchDepth);
    dispatchPending();
}

void LogManager::dispatchPending()
{
    while (!m_pending.isEmpty()) {
        const PendingMessage message = m_pending.takeFirst();
        // By index: a delegate may add or remove delegates.
        for (int i = 0; i < m_delegates.size(); ++i) {
            const QSharedPointer<AbstractDelegate> delegate = m_delegates.at(i);
            delegate->log(message.severity, message.channel, message.text);
        }
    }
}

void LogManager::addDelegate(const QSharedPointer<AbstractDelegate>& delegate)
{
    QMutexLocker lock(&m_mutex);
    if (delegate)
        m_delegates.append(delegate);
}

void LogManager::removeDelegate(const QSharedPointer<AbstractDelegate>& delegate)
{
    QMutexLocker lock(&m_mutex);
    m_delegates.removeAll(delegate);
}

} // namespace Orn::Core::Log
