#pragma once

#include "orncommon/core/abstractdelegate.h"

#include <QList>
#include <QMutex>
#include <QSharedPointer>
#include <QVector>

namespace Orn::Core::Log {

/// Hands each message of the program to a list of delegates, in order of addition.
///
/// Any thread may call. One recursive mutex is held across the delegates, so that they are never entered by
/// two threads at once; a message that a delegate logs waits until the current one went to all of them. What
/// is logged before there is a delegate is lost.
class LogManager
{
public:
    /// Made on first use, destroyed at exit.
    static LogManager& instance();

    LogManager();
    ~LogManager();
    LogManager(const LogManager&) = delete;
    LogManager& operator=(const LogManager&) = delete;

    void log(MsgSeverity severity, Channel const& channel, const QString& text);
    void info(Channel const& channel, const QString& text) { log(Info, channel, text); }
    void warning(Channel const& channel, const QString& text) { log(Warning, channel, text); }
    void error(Channel const& channel, const QString& text) { log(Error, channel, text); }

    void addDelegate(const QSharedPointer<AbstractDelegate>& delegate);
    /// Removes every entry equal to the pointer.
    void removeDelegate(const QSharedPointer<AbstractDelegate>& delegate);

    /// From here on Qt's own messages go to instance(), on the channel "Default"; debug messages are dropped,
    /// and a fatal one does not abort here.
    static void installQtMsgHandler();

private:
    struct PendingMessage
    {
        MsgSeverity severity;
        Channel channel;
        QString text;
    };

    void dispatchPending();

    QMutex m_mutex{QMutex::Recursive};
    QVector<QSharedPointer<AbstractDelegate>> m_delegates;
    int m_dispatchDepth = 0;
    QList<PendingMessage> m_pending;
};

} // namespace Orn::Core::Log
