#include "orncommon/gui/dockwidgettitlebar.h"

#include "orncommon/gui/dockwidgettitlebarbutton.h"
#include "orncommon/gui/elidedlabel.h"

#include <QHBoxLayout>
#include <QIcon>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>

namespace Orn::Gui {

namespace {
constexpr int barHeight = 26;
} // namespace

DockWidgetTitleBar::DockWidgetTitleBar(const QList<QAction*>& actions, QWidget* parent) : QWidget(parent)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 0, 4, 0);
    layout->setSpacing(2);
    m_icon = new QLabel(this);
    m_icon->hide();
    m_title = new ElidedLabel(QString(), this);
    m_title->setObjectName(QStringLiteral("dockTitle"));
    layout->addWidget(m_icon);
    layout->addSpacing(4);
    layout->addWidget(m_title, 1);
    for (QAction* action : actions)
        layout->addWidget(new DockWidgetTitleBarButton(action, this));
}

void DockWidgetTitleBar::setTitle(const QString& title)
{
    m_title->setText(title);
}

QString DockWidgetTitleBar::title() const
{
    return m_title->fullText();
}

void DockWidgetTitleBar::setIcon(const QIcon& icon)
{
    const int side = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
    m_icon->setPixmap(icon.pixmap(side, side));
    m_icon->setVisible(!icon.isNull());
}

void DockWidgetTitleBar::setFolded(bool folded)
{
    if (m_folded == folded)
        return;
    m_folded = folded;
    setMaximumHeight(folded ? 0 : QWIDGETSIZE_MAX);
    updateGeometry();
}

QSize DockWidgetTitleBar::sizeHint() const
{
    return {QWidget::sizeHint().width(), m_folded ? 0 : barHeight};
}

QSize DockWidgetTitleBar::minimumSizeHint() const
{
    return {QWidget::minimumSizeHint().width(), m_folded ? 0 : barHeight};
}

void DockWidgetTitleBar::paintEvent(QPaintEvent*)
{
    // A plain QWidget subclass shows a style sheet's background only if it paints it.
    QStyleOption option;
    option.initFrom(this);
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
}

} // namespace Orn::Gui
