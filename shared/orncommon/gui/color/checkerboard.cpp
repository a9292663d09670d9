#include "orncommon/gui/color/checkerboard.h"

#include "orncommon/core/colorrgbaf.h"

#include <QPainter>
#include <QPixmap>
#include <QPixmapCache>

namespace Orn::Gui {

QBrush checkerboardBrush(int cell)
{
    const QColor dark(0x66, 0x66, 0x66);
    const QColor light(0x99, 0x99, 0x99);
    const QString key =
        QStringLiteral("orn-gui-checkerboard-%1-%2-%3").arg(cell).arg(dark.name(), light.name());
    QPixmap board;
    if (!QPixmapCache::find(key, &board)) {
        board = QPixmap(2 * cell, 2 * cell);
        board.fill(dark);
        QPainter painter(&board);
        painter.fillRect(0, 0, cell, cell, light);
        painter.fillRect(cell, cell, cell, cell, light);
        painter.end();
        QPixmapCache::insert(key, board);
    }
    return QBrush(board);
}

QColor toQColor(const Core::ColorRGBAf& color)
{
    const auto channel = [](float value) { return qBound(0.0, static_cast<double>(value), 1.0); };
    return QColor::fromRgbF(channel(color.r), channel(color.g), channel(color.b), channel(color.a));
}

} // namespace Orn::Gui
