#pragma once

#include <QString>

namespace Zph::Engine {

/// Whether the file holds a shared library of this machine's kind in its whole length, by its own tables. The
/// system loader maps a file without asking that, and a file that was cut short, or that is still being
/// written, ends the process. Any thread.
bool isWholeLibrary(const QString& path);

} // namespace Zph::Engine
