#pragma once

#include "orncommon/core/channellogger.h"
#include "orncommon/core/logger.h"

namespace Orn::Core::Log {

/// Routes a logger into the process's log manager. A message's sub-channel is appended to `channel` as it is.
void bindLogger(Orn::Logger& logger, const QString& channel);

/// A new logger bound to the channel.
Orn::Logger orncppLogger(const ChannelLogger& channel);

} // namespace Orn::Core::Log
