#include "applications/player/session/cookingaliases.h"

#include "applications/player/session/sessionsettings.h"
#include "applications/player/session/static.h"
#include "orncommon/core/applicationsettings.h"

#include <QCoreApplication>
#include <QDir>
#include <QSettings>
#include <QStandardPaths>

#include <algorithm>

namespace Zph::Applications::Player {

namespace {

const QString packagesAlias = QStringLiteral("vlr");
const QString packagesFolder = QStringLiteral("/resources/packages");

/// The aliases in an open array of either kind of settings.
template<typename Settings> QVector<CookingAlias> readArray(Settings& settings, const QString& name)
{
    QVector<CookingAlias> aliases;
    const int size = settings.beginReadArray(name);
    for (int i = 0; i < size; ++i) {
        settings.setArrayIndex(i);
        aliases.append({settings.value(QStringLiteral("name")).toString(),
                        settings.value(QStringLiteral("path")).toString()});
    }
    settings.endArray();
    return aliases;
}

QVector<CookingAlias> storedAliases()
{
    const auto settings = Orn::Core::ApplicationSettings::getInstance().getSettingsUserPreferences();
    return readArray(*settings, QStringLiteral("preferences/resources/urlAliases"));
}

void setAlias(QVector<CookingAlias>& aliases, const QString& name, const QString& path)
{
    const auto same = std::find_if(aliases.begin(), aliases.end(),
                                   [&name](const CookingAlias& alias) { return alias.name == name; });
    if (same != aliases.end())
        same->path = path;
    else
        aliases.append({name, path});
}

/// The folder where the authoring application is installed; empty if nobody knows.
QString studioFolder(const CookingAliases::AskForStudio& ask)
{
    const QString stored = SessionSettings::studioPath.read();
    if (!stored.isEmpty() && QDir(stored).exists())
        return stored;
    const QString executable = QStandardPaths::findExecutable(
        QStringLiteral("Vellor Studio"),
        QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation));
    if (!executable.isEmpty())
        return QFileInfo(executable).absolutePath();
    const QString answer = ask ? ask() : QString();
    return CookingAliases::rememberStudio(answer) ? answer : QString();
}

QVector<CookingAlias> studioAliases(const CookingAliases::AskForStudio& ask)
{
    QSettings settings(QStringLiteral("Ornex"), QStringLiteral("Vellor"));
    QVector<CookingAlias> aliases = readArray(settings, QStringLiteral("/preferences/resources/urlAliases"));
    const QString studio = studioFolder(ask);
    if (!studio.isEmpty())
        setAlias(aliases, packagesAlias, studio + packagesFolder);
    return aliases;
}

/// The first of the resource folders that has the sub-folder; the one nearest to the program when none has.
QString resourceFolder(const QString& subFolder)
{
    const QString program = QCoreApplication::applicationDirPath();
    for (const QString& base : {program, program + QStringLiteral("/..")}) {
        const QString folder = QDir::cleanPath(base + QStringLiteral("/resources/") + subFolder);
        if (QDir(folder).exists())
            return folder;
    }
    return program + QStringLiteral("/resources/") + subFolder;
}

QVector<CookingAlias> find(const CookingAliases::AskForStudio& ask)
{
    const QString presetsPath = Static::instance().presetsPath;
    if (!presetsPath.isEmpty())
        return {{packagesAlias, presetsPath}};
    const QVector<CookingAlias> stored = storedAliases();
    return stored.isEmpty() ? studioAliases(ask) : stored;
}

} // namespace

const QVector<CookingAlias>& CookingAliases::get(const AskForStudio& ask)
{
    if (m_isKnown)
        return m_aliases;
    m_aliases = find(ask);
    for (const char* kind : {"shaders", "shapes", "maps"}) {
        const auto name = QString::fromLatin1(kind);
        setAlias(m_aliases, QStringLiteral("vs-3dview-") + name,
                 resourceFolder(QStringLiteral("view3d/") + name));
    }
    m_isKnown = true;
    return m_aliases;
}

bool CookingAliases::rememberStudio(const QString& folder)
{
    if (folder.isEmpty() || !QDir(folder + packagesFolder).exists())
        return false;
    SessionSettings::studioPath.write(folder);
    return true;
}

} // namespace Zph::Applications::Player
