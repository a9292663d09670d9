#include "picturelabel.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>

namespace Zph::Applications::Player {

PictureLabel::PictureLabel(QWidget* parent) : QLabel(parent)
{
    setAlignment(Qt::AlignCenter);
    setTextFormat(Qt::PlainText);
}

void PictureLabel::setPicture(const QImage& picture, const QSize& size, bool smooth, const QString& overlay)
{
    clear();
    m_smooth = smooth;
    m_overlay = overlay;
    const bool isKept = size.width() >= picture.width() || size.height() >= picture.height();
    const auto mode = smooth ? Qt::SmoothTransformation : Qt::FastTransformation;
    m_kept = isKept ? picture : QImage();
    m_shrunk = isKept ? QPixmap() : QPixmap::fromImage(picture.scaled(size, Qt::KeepAspectRatio, mode));
    resize(size);
    update();
}

void PictureLabel::setMessage(const QString& text, int pixelSize)
{
    m_kept = {};
    m_shrunk = {};
    QFont messageFont;
    if (pixelSize > 0)
        messageFont.setPixelSize(pixelSize);
    setFont(messageFont);
    setText(text);
    update();
}

void PictureLabel::paintEvent(QPaintEvent* event)
{
    if (m_kept.isNull() && m_shrunk.isNull()) {
        QLabel::paintEvent(event);
        return;
    }
    QPainter painter(this);
    paintPicture(painter, event->rect());
    if (!m_overlay.isEmpty()) {
        const QRect box = fontMetrics().boundingRect(m_overlay).adjusted(-8, -4, 8, 4);
        QRect centred(QPoint(), box.size());
        centred.moveCenter(rect().center());
        painter.fillRect(centred, QColor(0, 0, 0, 160));
        painter.setPen(Qt::white);
        painter.drawText(rect(), Qt::AlignCenter, m_overlay);
    }
}

void PictureLabel::paintPicture(QPainter& painter, const QRect& exposed) const
{
    if (m_kept.isNull()) {
        painter.drawPixmap(exposed, m_shrunk, exposed);
        return;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, m_smooth);
    const double scaleX = double(m_kept.width()) / width(), scaleY = double(m_kept.height()) / height();
    const QRectF source(exposed.x() * scaleX, exposed.y() * scaleY, exposed.width() * scaleX,
                        exposed.height() * scaleY);
    painter.drawImage(QRectF(exposed), m_kept, source);
}

void PictureLabel::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        emit pointPicked(event->pos());
    else
        QLabel::mousePressEvent(event);
}

void PictureLabel::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons() & Qt::LeftButton)
        emit pointPicked(event->pos());
    else
        QLabel::mouseMoveEvent(event);
}

} // namespace Zph::Applications::Player
