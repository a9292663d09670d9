#include "common/engine/engineswitcher.h"

#include "common/engine/backend.h"
#include "orncommon/core/applicationsettings.h"
#include "orncommon/core/debug.h"
#include "orncommon/core/scopedsettings.h"
#include "orncommon/core/settingkey.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace Zph::Engine::Switcher {

namespace {

using Orn::Core::ApplicationSettings;
using Orn::Core::ScopedSettingsBeginGroup;
using SettingsPtr = QSharedPointer<Orn::Core::ISettings>;

const Orn::Core::SettingKey<QString> currentSetting{"preferences/engines/current", {}};
const QString mruGroup = QStringLiteral("preferences/engines/MRU");

struct State
{
    QString current;
    AboutToChange aboutToChange;
    Changed changed;
    VellorLinkerGetEnginesListFn enginesList = nullptr;
};

State& state()
{
    static State instance;
    return instance;
}

SettingsPtr preferences()
{
    return ApplicationSettings::getInstance().getSettingsUserPreferences();
}

void becomeCurrent(const QString& path)
{
    if (state().current == path)
        return;
    state().current = path;
    if (path.isEmpty())
        currentSetting.remove();
    else
        currentSetting.write(path);
}

bool isListed(const QVector<EngineDescPtr>& engines, const QString& path)
{
    return std::any_of(engines.begin(), engines.end(), [file = QFileInfo(path)](const EngineDescPtr& engine) {
        return QFileInfo(engine->path) == file;
    });
}

/// Appends the engine unless it is listed, none, or not compatible; the result says whether it did.
bool appendEngine(QVector<EngineDescPtr>& engines, const QString& path, bool automatic)
{
    EngineDesc engine{path, {}, automatic};
    if (isListed(engines, path) || !engineInfo(path, engine.version) || !isCompatible(engine))
        return false;
    engines.append(EngineDescPtr::create(engine));
    return true;
}

bool isInEnginesDirectory(const QString& path)
{
    return QFileInfo(path).absoluteDir() == QDir(enginesDirectory());
}

/// Keys of the group, which is open, in order.
QStringList sortedKeys(const SettingsPtr& settings)
{
    QStringList keys = settings->childKeys();
    keys.sort();
    return keys;
}

/// The key of the engine in the group, which is open; empty if it isn't there.
QString keyOf(const SettingsPtr& settings, const QString& path)
{
    for (const QString& key : sortedKeys(settings)) {
        if (QFileInfo(settings->value(key).toString()) == QFileInfo(path))
            return key;
    }
    return {};
}

QString nextKey(const SettingsPtr& settings)
{
    const QStringList keys = sortedKeys(settings);
    const uint number = keys.isEmpty() ? 0 : keys.last().toUInt(nullptr, 16) + 1;
    return QStringLiteral("%1").arg(number, 4, 16, QLatin1Char('0'));
}

/// Appends the engines added by hand, and forgets those that are not to be listed.
void appendMRU(QVector<EngineDescPtr>& engines)
{
    const SettingsPtr settings = preferences();
    const ScopedSettingsBeginGroup group(settings, mruGroup);
    for (const QString& key : sortedKeys(settings)) {
        const QString path = settings->value(key).toString();
        if (!QFileInfo::exists(path) || !appendEngine(engines, path, false))
            settings->remove(key);
    }
}

} // namespace

const QString& current()
{
    return state().current;
}

AboutToChange& aboutToChange()
{
    return state().aboutToChange;
}

Changed& changed()
{
    return state().changed;
}

QString enginesDirectory()
{
    const QString found =
        ApplicationSettings::getInstance().findInInstallDir(QStringLiteral("plugins/engines"));
    if (!found.isEmpty() && QDir(found).exists())
        return QDir(found).absolutePath();
    Orn::Debug::warning("No engines directory found, using current directory instead");
    return QDir::currentPath();
}

QString resolve(const QString& name)
{
    if (name.isEmpty() || QDir::isAbsolutePath(name))
        return name;
    const QFileInfo file(name.contains('/') ? name : enginesDirectory() + '/' + name);
    const auto candidates = file.absoluteDir().entryInfoList({file.fileName() + '*'}, QDir::Files);
    for (const QFileInfo& candidate : candidates) {
        EngineDesc engine{candidate.absoluteFilePath(), {}, false};
        if (probe(engine.path) && engineInfo(engine.path, engine.version) && isCompatible(engine))
            return engine.path;
    }
    return {};
}

bool loadCurrent(const QString& fallback)
{
    return load(resolve(currentSetting.isStored() ? currentSetting.read() : fallback));
}

bool load(const QString& path)
{
    const QString resolved = resolve(path);
    aboutToChange()(resolved);
    if (!resolved.isEmpty() && Zph::Engine::load(resolved)) {
        becomeCurrent(resolved);
        changed()(current(), true);
        return true;
    }
    const bool isBack = !current().isEmpty() && Zph::Engine::load(current());
    if (!isBack)
        becomeCurrent(QString());
    changed()(current(), false);
    return isBack;
}

QVector<EngineDescPtr> listEngines()
{
    QVector<EngineDescPtr> engines;
    QMap<QString, VellorVersion> found;
    scanEngines(enginesDirectory(), found);
    for (auto entry = found.cbegin(); entry != found.cend(); ++entry) {
        const EngineDesc engine{entry.key(), entry.value(), true};
        if (isCompatible(engine))
            engines.append(EngineDescPtr::create(engine));
    }
    appendMRU(engines);
    VellorVersion version;
    if (QFileInfo::exists(current()) && appendEngine(engines, current(), false))
        addToMRU(current(), version);
    return engines;
}

bool isCompatible(const EngineDesc& engine)
{
    if (engine.version.interfaceRevision <= VELLOR_INTERFACE_REVISION_BELOW || !state().enginesList)
        return false;
    for (const VellorLinkerEngineDesc* served = state().enginesList(); served->engineId != 0; ++served) {
        if (served->engineId == engine.version.engineId &&
            served->linkerCompatibility == engine.version.linkerCompatibility)
            return true;
    }
    return false;
}

bool addToMRU(const QString& path, VellorVersion& version)
{
    if (isInEnginesDirectory(path))
        return true;
    EngineDesc engine{path, {}, false};
    if (!engineInfo(path, engine.version) || !isCompatible(engine))
        return false;
    version = engine.version;
    const SettingsPtr settings = preferences();
    const ScopedSettingsBeginGroup group(settings, mruGroup);
    if (keyOf(settings, path).isEmpty()) {
        settings->setValue(nextKey(settings), QFileInfo(path).absoluteFilePath());
        settings->sync();
    }
    return true;
}

void removeFromMRU(const QString& path)
{
    const SettingsPtr settings = preferences();
    const ScopedSettingsBeginGroup group(settings, mruGroup);
    const QString key = keyOf(settings, path);
    if (!key.isEmpty())
        settings->remove(key);
}

void setLinkerEnginesList(VellorLinkerGetEnginesListFn enginesList)
{
    state().enginesList = enginesList;
}

} // namespace Zph::Engine::Switcher
