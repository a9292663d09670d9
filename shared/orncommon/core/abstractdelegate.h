#pragma once

#include "orncommon/core/msgseverity.h"

#include <QString>

namespace Orn::Core::Log {

/// The name under which a part of the program logs; needs no registration.
using Channel = QString;

/// A sink of log messages.
class AbstractDelegate
{
public:
    virtual ~AbstractDelegate() = default;

    /// Called from any thread, one call at a time, under the manager's lock: it must not wait for another
    /// thread that logs. Logging from inside is fine; that message follows when the call has returned.
    virtual void log(MsgSeverity severity, Channel const& channel, const QString& text) = 0;
};

} // namespace Orn::Core::Log
