#include "applications/player/images/widgets/droppedpicture.h"

#include "applications/player/images/widgets/imageserverfactories.h"

#include <QCollator>
#include <QDir>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

#include <algorithm>

namespace Zph::Applications::Player {

namespace {

// The 9 ahead of the 10.
QString firstByNumber(const QStringList& names)
{
    QCollator order{QLocale(QLocale::English)}; // that of "C" knows no numbers
    order.setNumericMode(true);
    const auto first = std::min_element(names.begin(), names.end(), order);
    return first == names.end() ? QString() : *first;
}

QString firstPicture(const QDir& folder)
{
    const QString name = firstByNumber(folder.entryList(imageServerPatterns(), QDir::Files | QDir::Readable));
    return name.isEmpty() ? name : folder.filePath(name);
}

bool isPicture(const QString& path)
{
    return QDir::match(imageServerPatterns(), QFileInfo(path).fileName());
}

} // namespace

QString droppedPicture(const QMimeData& data)
{
    QStringList paths;
    const QList<QUrl> urls = data.urls();
    for (const QUrl& url : urls)
        paths.append(url.toLocalFile());
    if (paths.isEmpty() || paths.first().isEmpty())
        return {};
    if (QFileInfo(paths.first()).isDir())
        return firstPicture(QDir(paths.first()));
    if (!isPicture(paths.first()))
        return {};
    paths.erase(
        std::remove_if(paths.begin(), paths.end(), [](const QString& path) { return !isPicture(path); }),
        paths.end());
    return firstByNumber(paths);
}

} // namespace Zph::Applications::Player
