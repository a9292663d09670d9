#include "orncommon/core/urlaliases.h"

#include "orncommon/core/filepathmgr.h"
#include "orncommon/core/scopedsettings.h"
#include "orncommon/core/url.h"

#include <QDir>

namespace Orn::Core {

namespace {

const QString settingsArray = QStringLiteral("preferences/resources/urlAliases");
const QString nameKey = QStringLiteral("name");
const QString pathKey = QStringLiteral("path");

QString absoluteFolder(const QString& path)
{
    return QDir::cleanPath(QDir(path).absolutePath());
}

// Of a path below the folder or equal to it; null for any other.
QString restBelow(const QString& folder, const QString& path)
{
    if (path == folder)
        return QLatin1String("");
    const QString start = folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
    return path.startsWith(start) ? path.mid(start.size()) : QString();
}

bool isSavedAsItIs(const QString& path)
{
    return path == QLatin1String("?himself") || path.startsWith(QLatin1Char(':')) || Url(path).hasScheme();
}

} // namespace

UrlAliases::Name UrlAliases::Name::sFixedName(const QString& name)
{
    Name result;
    result.m_name = name;
    return result;
}

void UrlAliases::setAlias(const Name& name, const Path& path)
{
    m_paths.insert(name, path);
}

void UrlAliases::removeAlias(const Name& name)
{
    m_paths.remove(name);
}

QString UrlAliases::urlToAbsPath(const QString& text) const
{
    const Url url(text);
    const auto alias = m_paths.constFind(Name::sFixedName(url.getScheme()));
    if (!url.hasScheme() || alias == m_paths.cend())
        return text;
    QString folder = absoluteFolder(*alias);
    if (!folder.endsWith(QLatin1Char('/')))
        folder += QLatin1Char('/');
    return folder + url.getPath();
}

QString UrlAliases::absPathToUrl(const QString& path, const QString& baseDir,
                                 const std::shared_ptr<FilePathMgr>& filePathMgr, bool* matched) const
{
    if (matched)
        *matched = false;
    if (isSavedAsItIs(path))
        return path;
    const QString absolute = QDir::cleanPath(QDir(baseDir).absoluteFilePath(path));
    QString url;
    int longest = -1;
    for (auto alias = m_paths.cbegin(); alias != m_paths.cend(); ++alias) {
        if (alias.value().isEmpty())
            continue;
        const QString folder = absoluteFolder(alias.value());
        const QString rest = restBelow(folder, absolute);
        if (rest.isNull() || folder.size() <= longest)
            continue;
        longest = folder.size();
        url = Url(alias.key().toString(), rest).toString();
    }
    if (longest < 0)
        return filePathMgr ? filePathMgr->getPathToSave(absolute, baseDir)
                           : FilePathMgr().getPathToSave(absolute, baseDir);
    if (matched)
        *matched = true;
    return url;
}

UrlAliases UrlAliases::load(ISettings& settings)
{
    UrlAliases aliases;
    const int size = settings.beginReadArray(settingsArray);
    for (int i = 0; i < size; ++i) {
        settings.setArrayIndex(i);
        const QString name = settings.value(nameKey).toString();
        if (!name.isEmpty())
            aliases.setAlias(Name::sFixedName(name), settings.value(pathKey).toString());
    }
    settings.endArray();
    return aliases;
}

void UrlAliases::save(const QSharedPointer<ISettings>& settings) const
{
    settings->remove(settingsArray);
    const ScopedSettingsBeginWriteArray array(settings, settingsArray);
    int index = 0;
    for (auto alias = m_paths.cbegin(); alias != m_paths.cend(); ++alias) {
        settings->setArrayIndex(index++);
        settings->setValue(nameKey, alias.key().toString());
        settings->setValue(pathKey, alias.value().isEmpty() ? QString() : QDir(alias.value()).absolutePath());
    }
}

} // namespace Orn::Core
