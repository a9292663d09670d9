#include "applications/player/session/cookingaliases.h"

#include "applications/player/session/sessionsettings.h"
#include "applications/player/session/static.h"
#include "orncommon/core/applicationsettings.h"
#include "orncommon/core/defaultsettings.h"
#include "orncommon/core/urlaliases.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

#include <algorithm>

namespace Zph::Applications::Player {

namespace {

const QString packagesAlias = QStringLiteral("vlr");
const QString packagesFolder = QStringLiteral("/resources/packages");

QVector<CookingAlias> storedAliases(Orn::Core::ISettings& settings)
{
    const auto stored = Orn::Core::UrlAliases::load(settings);
    QVector<CookingAlias> aliases;
    for (const auto& name : stored.getAliases())
        aliases.append({name.toString(), stored.getPath(name)});
    return aliases;
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
    Orn::Core::DefaultSettings settings(QStringLiteral("Ornex"), QStringLiteral("Vellor"));
    QVector<CookingAlias> aliases = storedAliases(settings);
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
    const QVector<CookingAlias> stored =
        storedAliases(*Orn::Core::ApplicationSettings::getInstance().getSettingsUserPreferences());
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
