#include "applications/player/images/widgets/croppreview.h"

#include "applications/player/images/widgets/picturethumbnail.h"
#include "orncommon/gui/color/checkerboard.h"

#include <QPainter>

namespace Zph::Applications::Player {

namespace {

constexpr QSize leastSize(144, 96);
constexpr int checkSize = 5;
const QColor shade(0, 0, 0, 170); // over what is cut off
const QColor keptLine(0x4d, 0xa3, 0xd9);

} // namespace

CropPreview::CropPreview(const QString& text, QWidget* parent) : QLabel(text, parent)
{
    setAlignment(Qt::AlignCenter);
    setMinimumSize(leastSize);
}

void CropPreview::setPicture(const QSharedPointer<Orn::Surfaces::Surface>& picture)
{
    m_size = picture ? QSize(int(picture->width()), int(picture->height())) : QSize();
    auto* thumbnail = new PictureThumbnail(this);
    connect(thumbnail, &PictureThumbnail::changed, this, [this, thumbnail](const QPixmap& pixmap) {
        m_thumbnail = pixmap;
        update();
        thumbnail->deleteLater();
    });
    thumbnail->show(picture, {}, qRound(leastSize.width() * devicePixelRatioF()));
}

void CropPreview::setCropping(const QMargins& cropping)
{
    m_cropping = cropping;
    update();
}

QRect CropPreview::kept() const
{
    const QRect left = QRect(QPoint(), m_size).marginsRemoved(m_cropping);
    return left.isEmpty() ? QRect() : left;
}

QRectF CropPreview::picturePlace() const
{
    const QRectF room = contentsRect().marginsRemoved({3, 3, 3, 3});
    QRectF place(QPointF(), QSizeF(m_size).scaled(room.size(), Qt::KeepAspectRatio));
    place.moveCenter(room.center());
    return place;
}

void CropPreview::paintEvent(QPaintEvent* event)
{
    if (m_thumbnail.isNull())
        return QLabel::paintEvent(event);
    QFrame::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QRectF place = picturePlace();
    painter.fillRect(place, Orn::Gui::checkerboardBrush(checkSize));
    painter.drawPixmap(place, m_thumbnail, m_thumbnail.rect());
    const double scale = place.width() / m_size.width();
    const QRect left = kept();
    const QRectF shown(place.topLeft() + QPointF(left.topLeft()) * scale, QSizeF(left.size()) * scale);
    painter.setClipRegion(QRegion(place.toAlignedRect()) - QRegion(shown.toRect()));
    painter.fillRect(place, shade);
    painter.setClipping(false);
    if (!left.isEmpty() && left.size() != m_size) {
        painter.setPen(keptLine);
        painter.drawRect(shown.toRect().adjusted(0, 0, -1, -1));
    }
    drawText(painter);
}

// On a plate of its own, to be read on any picture.
void CropPreview::drawText(QPainter& painter) const
{
    QRect plate = fontMetrics().boundingRect(text()).adjusted(-6, -2, 6, 2);
    plate.moveCenter(contentsRect().center());
    plate.moveBottom(contentsRect().bottom() - 6);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(shade);
    painter.drawRoundedRect(plate, 3, 3);
    painter.setPen(palette().color(QPalette::BrightText));
    painter.drawText(plate, Qt::AlignCenter, text());
}

} // namespace Zph::Applications::Player
