#pragma once

#include <QString>

namespace Orn::Core::Log {

/// Tells the repeats of a line from new lines, and counts them.
class LogMsgRepetitionController
{
public:
    /// Takes the next line. True if it equals the one before: it is counted, and should not be written.
    bool isRepetition(const QString& line);

    /// What to write before the line that ended a run of repeats; empty if there was no run. Gives each
    /// report once.
    QString takeReport();

private:
    QString m_lastLine;
    quint32 m_repeats = 0;
    bool m_reportWaits = false;
    quint32 m_repeatsToReport = 0;
};

} // namespace Orn::Core::Log
