#pragma once

#include <QString>
#include <QTemporaryFile>

#include <memory>

namespace Zph::Engine {

/// Whether the file holds a shared library of this machine's kind in its whole length, by its own tables. The
/// system loader maps a file without asking that, and a file that was cut short, or that is still being
/// written, ends the process. Any thread.
bool isWholeLibrary(const QString& path);

/// A copy to load the library from. One that runs is mapped into memory, and whoever writes into its file
/// changes the code under the program: a rebuilt file, in whatever way it is written, must wait until the
/// program takes it. The copy lies beside the original, hidden, so that the engine finds its companions; it
/// is deleted with the object, which need not live longer than the loading. Null where the folder takes no
/// file.
std::unique_ptr<QTemporaryFile> hiddenCopy(const QString& path);

} // namespace Zph::Engine
