#pragma once

#include <QString>

namespace Zph::Applications::Player {

/// Hears what cooking and linking have to say: the window's error console and status bar, or a terminal.
/// Main thread; called while the work goes on.
class PackageListener
{
public:
    virtual ~PackageListener() = default;

    /// For the error console. Level 0 is a note or a warning, 1 an error, 2 the failure of the whole.
    virtual void message(int level, const QString& text) = 0;
    /// How far the work has come: a line for the console and the status area. What the linker says begins
    /// with PackageLinker::prefix(), everything else is the cooker's.
    virtual void stage(const QString& text) = 0;
    /// For the status bar alone.
    virtual void status(const QString& text) = 0;
};

} // namespace Zph::Applications::Player
