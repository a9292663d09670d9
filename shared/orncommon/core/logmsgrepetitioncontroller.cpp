#include "orncommon/core/logmsgrepetitioncontroller.h"

namespace Orn::Core::Log {

bool LogMsgRepetitionController::isRepetition(const QString& line)
{
    if (line == m_lastLine) {
        ++m_repeats;
        m_reportWaits = false;
        return true;
    }
    m_lastLine = line;
    if (m_repeats > 0) {
        m_repeatsToReport = m_repeats;
        m_reportWaits = true;
    }
    m_repeats = 0;
    return false;
}

QString LogMsgRepetitionController::takeReport()
{
    if (!m_reportWaits)
        return {};
    m_reportWaits = false;
    return QStringLiteral("   ... (repeated %1 more times)\n").arg(m_repeatsToReport);
}

} // namespace Orn::Core::Log
