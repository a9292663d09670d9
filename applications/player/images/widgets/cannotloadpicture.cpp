#include "applications/player/images/widgets/cannotloadpicture.h"

#include "orncommon/image/qimageconversion.h"

#include <QCoreApplication>
#include <QPainter>
#include <QTextOption>

namespace Zph::Applications::Player {

namespace {

constexpr int side = 512;
constexpr QRgb grey = 0xffa8a8a8;
constexpr int margin = 16;

} // namespace

QSharedPointer<Orn::Surfaces::Surface> cannotLoadPicture(const QString& path)
{
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(grey);
    QPainter painter(&image);
    QTextOption option(Qt::AlignCenter);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere); // paths have few blanks
    painter.setPen(Qt::black);
    painter.drawText(
        QRectF(image.rect()).adjusted(margin, margin, -margin, -margin),
        QCoreApplication::translate("Zph::Applications::Player::ImageServerSeq", "Cannot load '%1'.")
            .arg(path),
        option);
    painter.end();
    return Orn::Image::Core::qImageToSurface(image);
}

} // namespace Zph::Applications::Player
