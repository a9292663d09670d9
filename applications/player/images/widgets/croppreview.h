#pragma once

#include "orncommon/surfaces/surface.h"

#include <QLabel>
#include <QMargins>
#include <QPixmap>
#include <QSharedPointer>

namespace Zph::Applications::Player {

// A picture with what a cropping leaves of it; a frame with the label's text as long as there is no picture.
class CropPreview : public QLabel
{
    Q_OBJECT

public:
    CropPreview(const QString& text, QWidget* parent);

    // Shown when a likeness of it has been made.
    void setPicture(const QSharedPointer<Orn::Surfaces::Surface>& picture);
    // In pixels of the picture.
    void setCropping(const QMargins& cropping);

    // What is left of the picture, in its pixels; empty without a picture, too.
    QRect kept() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QRectF picturePlace() const;
    void drawText(QPainter& painter) const;

    QSize m_size; // of the picture
    QPixmap m_thumbnail;
    QMargins m_cropping;
};

} // namespace Zph::Applications::Player
