#include "picturesaver.h"

#include "applications/player/views/viewsettings.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QRegularExpression>

namespace Zph::Applications::Player::PictureSaver {

QString filters()
{
    QStringList order;
    QMap<QString, QStringList> patterns;
    for (const auto& format : Orn::Image::Codec::SurfaceCodecManager::instance().getWritableFormats()) {
        if (!patterns.contains(format.description))
            order << format.description;
        patterns[format.description] << "*." + format.extension.toLower();
    }
    for (QString& description : order)
        description = QStringLiteral("%1 (%2)").arg(description, patterns.value(description).join(' '));
    return order.join(";;");
}

QString suffixOfFilter(const QString& filter)
{
    static const QRegularExpression first(R"(\*\.([^\s)]+))");
    return first.match(filter).captured(1);
}

void saveAs(QWidget* parent, const QSharedPointer<Orn::Surfaces::Surface>& surface)
{
    QString filter = ViewSettings::saveImageFilter.read();
    QString path = QFileDialog::getSaveFileName(parent, QObject::tr("Save as bitmap"),
                                                ViewSettings::saveImagePath.read(), filters(), &filter);
    if (path.isEmpty())
        return;
    if (QFileInfo(path).suffix().isEmpty())
        path += '.' + suffixOfFilter(filter);
    ViewSettings::saveImagePath.write(QFileInfo(path).absolutePath());
    ViewSettings::saveImageFilter.write(filter);
    if (!Orn::Image::Codec::SurfaceCodecManager::instance().saveFile(surface, path))
        QMessageBox::warning(
            parent, QObject::tr("Bitmap I/O Error"),
            QObject::tr("Cannot save bitmap '%1'.\nCheck folder permissions / space available.").arg(path));
}

} // namespace Zph::Applications::Player::PictureSaver
