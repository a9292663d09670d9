#include "orncommon/core/channellogger.h"

#include "orncommon/core/logmanager.h"

namespace Orn::Core::Log {

const ChannelLogger::Stream& ChannelLogger::Stream::operator<<(const QString& text) const
{
    m_logger.log(m_severity, text);
    return *this;
}

void ChannelLogger::log(MsgSeverity severity, const QString& text) const
{
    LogManager::instance().log(severity, m_channel, text);
}

void ChannelLogger::log(const Msg& message) const
{
    if (!message.text.isEmpty())
        log(message.type == Msg::Alert || message.type == Msg::Failure ? Warning : Info, message.text);
    for (const QSharedPointer<Msg>& child : message.children)
        if (child)
            log(*child);
}

} // namespace Orn::Core::Log
