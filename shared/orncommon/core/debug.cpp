#include "orncommon/core/debug.h"

#include "orncommon/core/logmanager.h"

#include <QFileInfo>

namespace Orn::Debug {

namespace {

void log(Core::Log::MsgSeverity severity, const QString& text, const char* file, int line)
{
    // The folder depends on where the program was built, and says nothing.
    const QString name = QFileInfo(QString::fromUtf8(file)).fileName();
    Core::Log::LogManager::instance().log(severity, QStringLiteral("Default"),
                                          QStringLiteral("%1(%2): ").arg(name).arg(line) + text);
}

} // namespace

void warning(const QString& text, const char* file, int line)
{
    log(Core::Log::Warning, text, file, line);
}

void error(const QString& text, const char* file, int line)
{
    log(Core::Log::Error, text, file, line);
}

} // namespace Orn::Debug
