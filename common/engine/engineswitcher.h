#pragma once

#include <QSharedPointer>
#include <QString>
#include <QVector>

#include <boost/signals2/signal.hpp>

#include <vellor/engine.h>
#include <vellor/linker.h>

namespace Zph::Engine {

/// An engine that the user can choose.
struct EngineDesc
{
    QString path; ///< absolute
    VellorVersion version = {};
    /// Found in the engines folder, as opposed to added by hand.
    bool automatic = false;
};
using EngineDescPtr = QSharedPointer<EngineDesc>;

/// Which engine is loaded, which there are, and the change from one to another while documents are open.
///
/// One engine is current, or none. Both signals are synchronous: whoever holds a context or a handle lets go
/// of it on aboutToChange, before the library goes. The choice, and the engines outside the engines folder
/// ("MRU"), are kept in the user's preferences. Main thread.
namespace Switcher {

using AboutToChange = boost::signals2::signal<void(const QString& path)>;
using Changed = boost::signals2::signal<void(const QString& path, bool ok)>;

/// The path of the loaded engine; empty for none.
const QString& current();
AboutToChange& aboutToChange();
/// `ok` is false when another engine was asked for than the one that is current now.
Changed& changed();

/// The folder "plugins/engines" of the installation, or with a warning the current directory.
QString enginesDirectory();

/// A bare file name stands for a file of the engines folder, and any relative name also for the versioned
/// files that begin with it: gives the absolute path of the first that is a compatible engine, else an empty
/// string. Absolute and empty names come back as they are.
QString resolve(const QString& name);

/// Loads the engine of the preferences, or `fallback` when they name none.
bool loadCurrent(const QString& fallback);

/// Loads another engine, or the same file anew. If that fails, the one before is loaded again. The result
/// says whether an engine is loaded.
bool load(const QString& path);

/// Every compatible engine: those of the engines folder by path, those added by hand, and the current one.
/// Entries added by hand that are no engine any more, or are listed anyway, are taken out of the preferences.
QVector<EngineDescPtr> listEngines();

/// Whether the program and the linker work for the engine.
bool isCompatible(const EngineDesc& engine);

/// Keeps an engine file among those added by hand. True, with nothing to keep, for one of the engines folder;
/// false for a file that is no compatible engine. Otherwise `version` is the engine's.
bool addToMRU(const QString& path, VellorVersion& version);
void removeFromMRU(const QString& path);

/// Where the engines that the linker serves are listed. Set at start-up; without it no engine is compatible.
void setLinkerEnginesList(VellorLinkerGetEnginesListFn enginesList);

} // namespace Switcher
} // namespace Zph::Engine
