#pragma once

#include "orncommon/core/abstractdelegate.h"
#include "orncommon/core/msg.h"

namespace Orn::Core::Log {

/// Logs on one channel. Immutable, usable from any thread, and as a file-scope object made before main.
class ChannelLogger
{
public:
    /// Logs each text that it is given as one message.
    class Stream
    {
    public:
        Stream(const ChannelLogger& logger, MsgSeverity severity) : m_logger(logger), m_severity(severity) {}
        const Stream& operator<<(const QString& text) const;

    private:
        const ChannelLogger& m_logger;
        MsgSeverity m_severity;
    };

    explicit ChannelLogger(const char* channel) : m_channel(QString::fromUtf8(channel)) {}
    explicit ChannelLogger(const Channel& channel) : m_channel(channel) {}

    const Channel& channel() const { return m_channel; }

    void log(MsgSeverity severity, const QString& text) const;
    void info(const QString& text) const { log(Info, text); }
    void warning(const QString& text) const { log(Warning, text); }
    void error(const QString& text) const { log(Error, text); }

    /// Logs the tree depth first, a message without text by its children alone.
    void log(const Msg& message) const;

    /// A stream that must not outlive this logger.
    Stream stream(MsgSeverity severity) const { return {*this, severity}; }

private:
    Channel m_channel;
};

} // namespace Orn::Core::Log
