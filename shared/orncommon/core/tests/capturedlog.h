#pragma once

#include "orncommon/core/logmanager.h"
#include "orncommon/core/scopedpushlogdelegate.h"

#include <QStringList>

/// Collects what the process's manager is told, as "SEVERITY CHANNEL: TEXT" with the severity's number.
class CapturedLog
{
public:
    const QStringList& lines() const { return m_sink->lines; }

private:
    struct Sink : Orn::Core::Log::AbstractDelegate
    {
        void log(Orn::Core::Log::MsgSeverity severity, Orn::Core::Log::Channel const& channel,
                 const QString& text) override
        {
            lines << QStringLiteral("%1 %2: %3").arg(int(severity)).arg(channel, text);
        }
        QStringList lines;
    };

    QSharedPointer<Sink> m_sink = QSharedPointer<Sink>::create();
    Orn::Core::Log::ScopedPushLogDelegate m_push{m_sink};
};
