#include "applications/player/tweaks/rollbase.h"

#include "applications/player/tweaks/sharedicon.h"
#include "orncommon/gui/elidedlabel.h"

#include <QHBoxLayout>
#include <QMouseEvent>
#include <QTextDocumentFragment>
#include <QToolButton>

namespace Zph::Applications::Player {

RollBase::RollBase(const QString& caption, QWidget* parent)
    : QFrame(parent), m_headerFrame(new QFrame(this)), m_headerLayout(new QHBoxLayout(m_headerFrame)),
      m_foldButton(new QToolButton(m_headerFrame)), m_bodyFrame(new QFrame(this)),
      m_bodyLayout(new QVBoxLayout(m_bodyFrame))
{
    m_foldButton->setIcon(foldIcon());
    m_foldButton->setCheckable(true);
    m_foldButton->setChecked(true);
    m_foldButton->setAutoRaise(true);
    m_foldButton->setToolTip(tr("Fold/Unfold roll panel"));
    m_foldButton->setAccessibleName(QTextDocumentFragment::fromHtml(caption).toPlainText());

    auto* label = new Orn::Gui::ElidedLabel(caption, m_headerFrame);
    label->setMinimumWidth(40);
    m_headerFrame->setObjectName(QStringLiteral("tweakheader"));
    m_headerLayout->setContentsMargins(0, 0, 0, 0);
    m_headerLayout->addWidget(m_foldButton);
    m_headerLayout->addWidget(label, 1);

    m_bodyLayout->setContentsMargins(0, 4, 0, 4);
    m_bodyLayout->setSpacing(2);

    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(4);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_headerFrame);
    layout->addWidget(m_bodyFrame);

    connect(m_foldButton, &QToolButton::toggled, this, &RollBase::setItemsVisible);
    connect(this, &RollBase::notifyUnfold, m_foldButton, &QToolButton::setChecked);
}

bool RollBase::isUnfolded() const
{
    return m_foldButton->isChecked();
}

int RollBase::indent() const
{
    return m_bodyLayout->contentsMargins().left();
}

void RollBase::setIndent(int pixels)
{
    QMargins margins = m_bodyLayout->contentsMargins();
    margins.setLeft(pixels);
    m_bodyLayout->setContentsMargins(margins);
}

void RollBase::unfold(bool unfold)
{
    emit notifyUnfold(unfold);
}

void RollBase::setItemsVisible(bool visible)
{
    m_bodyFrame->setVisible(visible);
    updateGeometry();
    if (visible)
        emit unfolded(this);
}

void RollBase::mouseDoubleClickEvent(QMouseEvent* event)
{
    unfold(!isUnfolded());
    event->accept();
}

} // namespace Zph::Applications::Player
