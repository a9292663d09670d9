#include "applications/player/session/static.h"

#include "applications/player/session/sessionsettings.h"
#include "orncommon/core/applicationsettings.h"
#include "orncommon/core/settingsversion.h"

#include <QDir>
#include <QFileInfo>

namespace Zph::Applications::Player {

namespace {

constexpr int recentFilesLimit = 10;
const QLatin1Char recentFilesSeparator('?');

} // namespace

Static& Static::instance()
{
    static auto* const object = new Static; // until the process ends, so that no destructor outlives it
    return *object;
}

Static::Static()
{
    if (const auto settings = Orn::Core::ApplicationSettings::getInstance().getSettingsSessions())
        Orn::Core::wipeIfOtherVersion(*settings);
    m_sizeLimit = SessionSettings::sizeLimit.read();
}

void Static::readCommandLine(const CommandLine& arguments)
{
    developerMode = arguments.developerMode;
    autoReload = arguments.autoReload;
    if (!arguments.presetsPath.isEmpty() && QFileInfo::exists(arguments.presetsPath))
        presetsPath = arguments.presetsPath;
    for (const QString& path : arguments.inputFiles) {
        if (QFileInfo::exists(path))
            inputFiles.append(QFileInfo(path).absoluteFilePath());
    }
}

void Static::rememberFile(const QString& path)
{
    const QFileInfo file(path);
    currentFile = file.absoluteFilePath();
    SessionSettings::openFilePath.write(file.absolutePath());
    QStringList files = recentFiles();
    files.removeAll(currentFile);
    files.prepend(currentFile);
    SessionSettings::recentFiles.write(files.mid(0, recentFilesLimit).join(recentFilesSeparator));
}

QStringList Static::recentFiles() const
{
    return SessionSettings::recentFiles.read().split(recentFilesSeparator, Qt::SkipEmptyParts);
}

const QStringList& Static::stockPackageFiles() const
{
    static const QStringList files = [] {
        QStringList found;
        const QDir folder(QStringLiteral(":/zph/applications/player/stockpack"));
        for (const QFileInfo& file : folder.entryInfoList({QStringLiteral("*.vlrar")}, QDir::Files))
            found.append(file.absoluteFilePath());
        return found;
    }();
    return files;
}

void Static::setSizeLimit(int logarithm)
{
    m_sizeLimit = logarithm;
    SessionSettings::sizeLimit.write(logarithm);
}

const QIcon& Static::presetIcon() const
{
    static const QIcon icon(QStringLiteral(":/zph/applications/player/images/preset.svg"));
    return icon;
}

const QIcon& Static::foldIcon() const
{
    static const QIcon icon(QStringLiteral(":/zph/applications/player/images/fold.svg"));
    return icon;
}

} // namespace Zph::Applications::Player
