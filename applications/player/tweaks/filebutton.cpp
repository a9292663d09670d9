#include "applications/player/tweaks/filebutton.h"

#include "orncommon/gui/color/checkerboard.h"

#include <QStyleOptionButton>
#include <QStylePainter>

#include <algorithm>

namespace Zph::Applications::Player {

namespace {

constexpr int leastWidth = 80;
constexpr int thumbnailMargin = 4;
constexpr int checkSize = 4;
constexpr double missingOpacity = 0.3;

QString withoutMnemonics(QString text)
{
    return text.replace('&', QLatin1String("&&"));
}

QPixmap onCheckerboard(const QPixmap& pixmap)
{
    QPixmap board(pixmap.size());
    board.setDevicePixelRatio(pixmap.devicePixelRatioF());
    QPainter painter(&board);
    const QRectF whole(QPointF(), QSizeF(pixmap.size()) / pixmap.devicePixelRatioF());
    painter.fillRect(whole, Orn::Gui::checkerboardBrush(checkSize));
    painter.drawPixmap(QPoint(), pixmap);
    return board;
}

} // namespace

FileButton::FileButton(QWidget* parent) : QPushButton(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void FileButton::setFileName(const QString& name)
{
    m_fileName = name;
    setText(withoutMnemonics(name));
    describe();
}

// The caption is its name.
void FileButton::describe()
{
    setAccessibleDescription(m_isMissing ? tr("%1, missing").arg(m_fileName) : m_fileName);
}

void FileButton::setThumbnailShown(bool shown)
{
    if (m_isThumbnailShown == shown)
        return;
    m_isThumbnailShown = shown;
    m_thumbnail = QPixmap();
    updateGeometry();
    update();
}

void FileButton::setThumbnail(const QPixmap& thumbnail)
{
    m_thumbnail = thumbnail.isNull() ? thumbnail : onCheckerboard(thumbnail);
    update();
}

void FileButton::setMissing(bool missing)
{
    if (m_isMissing == missing)
        return;
    m_isMissing = missing;
    setProperty("missing", missing);
    style()->unpolish(this);
    style()->polish(this);
    describe();
    update();
}

QSize FileButton::minimumSizeHint() const
{
    const int height = QPushButton::sizeHint().height();
    return {leastWidth, m_isThumbnailShown ? std::max(height, thumbnailSide + 2 * thumbnailMargin) : height};
}

QRect FileButton::thumbnailPlace() const
{
    const QRect place(thumbnailMargin, (height() - thumbnailSide) / 2, thumbnailSide, thumbnailSide);
    return QStyle::visualRect(layoutDirection(), rect(), place);
}

void FileButton::drawThumbnail(QPainter& painter) const
{
    QRect place(QPoint(), m_thumbnail.size() / m_thumbnail.devicePixelRatioF());
    place.moveCenter(thumbnailPlace().center());
    painter.setOpacity(m_isMissing ? missingOpacity : 1);
    painter.drawPixmap(place, m_thumbnail);
    painter.setOpacity(1);
}

void FileButton::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    QRect room = style()->subElementRect(QStyle::SE_PushButtonContents, &option, this);
    if (m_isThumbnailShown)
        room = QStyle::visualRect(
            layoutDirection(), rect(),
            room.adjusted(std::max(0, thumbnailSide + 2 * thumbnailMargin - room.left()), 0, 0, 0));
    painter.drawControl(QStyle::CE_PushButtonBevel, option);
    if (!m_thumbnail.isNull())
        drawThumbnail(painter);
    option.text = withoutMnemonics(fontMetrics().elidedText(m_fileName, Qt::ElideMiddle, room.width()));
    option.rect = room;
    painter.drawControl(QStyle::CE_PushButtonLabel, option);
}

} // namespace Zph::Applications::Player
