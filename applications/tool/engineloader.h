#pragma once

#include <QString>

namespace vellor::tool {

/// Loads an engine for the process: the file, or if it is empty the best one of the folder plugins/engines,
/// which is one that runs on the processor, then the newest. The user's choice in the window counts for
/// nothing here, so that a script gives the same pictures for everybody. Throws Failure.
void loadEngine(const QString& file);

/// "NAME MAJOR.MINOR.PATCH" of the loaded engine.
QString loadedEngineText();

} // namespace vellor::tool
