#include "applications/player/tweaks/filebutton.h"

#include <QStyleOptionButton>
#include <QStylePainter>

namespace Zph::Applications::Player {

namespace {

constexpr int leastWidth = 80;

QString withoutMnemonics(QString text)
{
    return text.replace('&', QLatin1String("&&"));
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
    setAccessibleDescription(name); // the caption is its name
}

QSize FileButton::minimumSizeHint() const
{
    return {leastWidth, QPushButton::sizeHint().height()};
}

void FileButton::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    const int room = style()->subElementRect(QStyle::SE_PushButtonContents, &option, this).width();
    option.text = withoutMnemonics(fontMetrics().elidedText(m_fileName, Qt::ElideMiddle, room));
    painter.drawControl(QStyle::CE_PushButton, option);
}

} // namespace Zph::Applications::Player
