#pragma once

#include <QString>

/// Messages about what should not happen, with the place in the source that noticed it. Any thread.
namespace Orn::Debug {

/// Logs "FILE(LINE): text" on the channel "Default". The place is the caller's; do not pass it.
void warning(const QString& text, const char* file = __builtin_FILE(), int line = __builtin_LINE());
void error(const QString& text, const char* file = __builtin_FILE(), int line = __builtin_LINE());

} // namespace Orn::Debug
