#include "orncommon/core/bindlogger.h"

#include "orncommon/core/logmanager.h"

namespace Orn::Core::Log {

namespace {

MsgSeverity toMsgSeverity(int severity)
{
    switch (severity) {
    case Orn::Logger::Info:
        return Info;
    case Orn::Logger::Warning:
        return Warning;
    default:
        return Error;
    }
}

} // namespace

void bindLogger(Orn::Logger& logger, const QString& channel)
{
    logger.setCallback([channel](int severity, const std::string& subChannel, const std::string& text) {
        LogManager::instance().log(toMsgSeverity(severity), channel + QString::fromStdString(subChannel),
                                   QString::fromStdString(text));
    });
}

Orn::Logger orncppLogger(const ChannelLogger& channel)
{
    Orn::Logger logger;
    bindLogger(logger, channel.channel());
    return logger;
}

} // namespace Orn::Core::Log
