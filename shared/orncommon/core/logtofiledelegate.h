#pragma once

#include "orncommon/core/abstractdelegate.h"
#include "orncommon/core/logmsgrepetitioncontroller.h"

#include <QFile>

namespace Orn::Core::Log {

/// Writes messages to a file, unbuffered: after a crash the last line is there. Repeated lines are counted
/// instead of written. A file that cannot be opened swallows all messages.
class LogToFileDelegate : public AbstractDelegate
{
public:
    /// A file of more bytes than this is emptied when a session starts; there is no other limit.
    static constexpr qint64 MaxFileSize = 2097152;

    explicit LogToFileDelegate(const QString& path);

    void log(MsgSeverity severity, Channel const& channel, const QString& text) override;

private:
    QFile m_file;
    LogMsgRepetitionController m_repetitions;
};

} // namespace Orn::Core::Log
