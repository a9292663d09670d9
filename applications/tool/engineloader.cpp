#include "applications/tool/engineloader.h"

#include "applications/tool/failure.h"
#include "common/engine/backend.h"
#include "common/engine/engineswitcher.h"

#include <QFileInfo>

#include <vellor/linker.h>

#include <tuple>

namespace vellor::tool {

namespace {

namespace Switcher = Zph::Engine::Switcher;

auto rank(const VellorVersion& version)
{
    return std::make_tuple(version.engineId == VELLOR_ENGINE_SSE2, version.versionMajor, version.versionMinor,
                           version.versionPatch);
}

QString bestEngine()
{
    QMap<QString, VellorVersion> engines;
    Zph::Engine::scanEngines(Switcher::enginesDirectory(), engines);
    QString best;
    for (auto entry = engines.cbegin(); entry != engines.cend(); ++entry) {
        if (Switcher::isCompatible({entry.key(), entry.value(), true}) &&
            (best.isEmpty() || rank(entry.value()) > rank(engines.value(best))))
            best = entry.key();
    }
    if (best.isEmpty())
        throw Failure(Failed, QStringLiteral("no engine in '%1'").arg(Switcher::enginesDirectory()));
    return best;
}

QString checkedEngine(const QString& file)
{
    const QString path = QFileInfo(file).absoluteFilePath();
    if (!QFileInfo(path).isFile())
        throw Failure(UnreadableFile, file + ": the file can't be read");
    VellorVersion version = {};
    if (!Zph::Engine::engineInfo(path, version) || !Switcher::isCompatible({path, version, false}))
        throw Failure(UnreadableFile, file + ": the file is no engine that this program works with");
    return path;
}

} // namespace

void loadEngine(const QString& file)
{
    Switcher::setLinkerEnginesList(&vellorLinkerGetEnginesList);
    const QString path = file.isEmpty() ? bestEngine() : checkedEngine(file);
    if (!Zph::Engine::load(path))
        throw Failure(Failed, path + ": the engine can't be loaded");
}

QString loadedEngineText()
{
    VellorVersion version = {};
    Zph::Engine::getCurrentVersion(&version, VELLOR_API_VERSION);
    return QString::fromUtf8(version.name ? version.name : "") + ' ' +
           Zph::Engine::engineVersionText(version);
}

} // namespace vellor::tool
