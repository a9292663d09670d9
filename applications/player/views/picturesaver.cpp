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
    // A dialog of our own: it appends the filter's suffix before it asks whether to write over a file.
    QFileDialog dialog(parent, QObject::tr("Save as bitmap"), ViewSettings::saveImagePath.read(), filters());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    const auto useSuffixOf = [&dialog](const QString& filter) {
        dialog.setDefaultSuffix(suffixOfFilter(filter));
    };
    QObject::connect(&dialog, &QFileDialog::filterSelected, useSuffixOf);
    dialog.selectNameFilter(ViewSettings::saveImageFilter.read());
    useSuffixOf(dialog.selectedNameFilter());
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return;
    const QString path = dialog.selectedFiles().first();
    ViewSettings::saveImagePath.write(QFileInfo(path).absolutePath());
    ViewSettings::saveImageFilter.write(dialog.selectedNameFilter());
    if (!Orn::Image::Codec::SurfaceCodecManager::instance().saveFile(surface, path))
        QMessageBox::warning(
            parent, QObject::tr("Bitmap I/O Error"),
            QObject::tr("Cannot save bitmap '%1'.\nCheck folder permissions / space available.").arg(path));
}

} // namespace Zph::Applications::Player::PictureSaver
