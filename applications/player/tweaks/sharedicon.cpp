#include "applications/player/tweaks/sharedicon.h"

#include <QCoreApplication>
#include <QHash>
#include <QTextDocument>

namespace Zph::Applications::Player {

namespace {

QHash<QString, QIcon>& icons()
{
    static QHash<QString, QIcon> loaded;
    return loaded;
}

// Icons hold pixmaps, which may not outlive the application object.
void forgetIcons()
{
    icons().clear();
}

QIcon load(const QString& path, const QString& onPath)
{
    QIcon icon(path);
    if (!onPath.isEmpty())
        icon.addFile(onPath, QSize(), QIcon::Normal, QIcon::On);
    return icon;
}

} // namespace

const QIcon& sharedIcon(const QString& path, const QString& onPath)
{
    if (icons().isEmpty())
        qAddPostRoutine(forgetIcons);
    auto found = icons().find(path);
    if (found == icons().end())
        found = icons().insert(path, load(path, onPath));
    return *found;
}

const QIcon& pinIcon()
{
    return sharedIcon(QStringLiteral(":/zph/editor/gui/images/pin_off.svg"),
                      QStringLiteral(":/zph/editor/gui/images/pin_on.svg"));
}

const QIcon& foldIcon()
{
    return sharedIcon(QStringLiteral(":/zph/applications/player/images/foldoff.svg"),
                      QStringLiteral(":/zph/applications/player/images/fold.svg"));
}

QString plainToolTip(const QString& text)
{
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text;
}

} // namespace Zph::Applications::Player
