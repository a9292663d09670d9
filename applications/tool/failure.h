#pragma once

#include "applications/tool/options.h"

#include <QString>

#include <stdexcept>

namespace vellor::tool {

/// Ends a command: the line that standard error gets, and the exit code. An empty text has been told already.
struct Failure : std::runtime_error
{
    Failure(ExitCode exitCode, const QString& text) : std::runtime_error(text.toStdString()), code(exitCode)
    {
    }

    ExitCode code;
};

/// Ends a command that a signal interrupted; the process then ends by that signal, as shells expect it.
struct Interrupted
{
};

} // namespace vellor::tool
