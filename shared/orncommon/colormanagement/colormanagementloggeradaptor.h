#pragma once

#include "orncommon/colormanagement/ilogger.h"
#include "orncommon/core/channellogger.h"

namespace Orn::ColorManagement {

/// Forwards to a channel of the program's log.
class ColorManagementLoggerAdaptor : public ILogger
{
public:
    explicit ColorManagementLoggerAdaptor(Core::Log::ChannelLogger const& logger) : m_logger(logger) {}

    void logInfo(std::string const& text) const override { m_logger.info(QString::fromStdString(text)); }
    void logWarning(std::string const& text) const override
    {
        m_logger.warning(QString::fromStdString(text));
    }
    void logError(std::string const& text) const override { m_logger.error(QString::fromStdString(text)); }

private:
    Core::Log::ChannelLogger m_logger;
};

} // namespace Orn::ColorManagement
