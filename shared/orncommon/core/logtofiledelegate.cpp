#include "orncommon/core/logtofiledelegate.h"

#include <QDateTime>
#include <QFileInfo>

namespace Orn::Core::Log {

namespace {

QString severityLabel(MsgSeverity severity)
{
    switch (severity) {
    case Info:
        return QStringLiteral("INFO");
    case Warning:
        return QStringLiteral("WARNING");
    case Error:
        return QStringLiteral("ERROR");
    }
    return QStringLiteral("UNEXPECTED");
}

QIODevice::OpenMode openModeFor(const QString& path)
{
    const QIODevice::OpenMode common = QIODevice::Text | QIODevice::Unbuffered;
    if (QFileInfo(path).size() <= LogToFileDelegate::MaxFileSize)
        return common | QIODevice::ReadWrite;
    return common | QIODevice::WriteOnly | QIODevice::Truncate;
}

} // namespace

LogToFileDelegate::LogToFileDelegate(const QString& path) : m_file(path)
{
    if (!m_file.open(openModeFor(path)))
        return;
    m_file.seek(m_file.size());
    m_file.write(QStringLiteral("===== New Session =====\n%1\n")
                     .arg(QDateTime::currentDateTime().toString(Qt::TextDate))
                     .toUtf8());
}

void LogToFileDelegate::log(MsgSeverity severity, Channel const& channel, const QString& text)
{
    if (!m_file.isWritable())
        return;
    const QString line = QStringLiteral("[%1][%2] %3\n").arg(severityLabel(severity), channel, text);
    if (m_repetitions.isRepetition(line))
        return;
    m_file.write((m_repetitions.takeReport() + line).toUtf8());
}

} // namespace Orn::Core::Log
