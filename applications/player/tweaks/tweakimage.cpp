#include "applications/player/tweaks/tweakimage.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QToolButton>

namespace Zph::Applications::Player {

TweakImage::TweakImage(const TweakContext& context, QWidget* parent)
    : TweakBase(ValueType::Image, context, parent), m_fileButton(new QPushButton(tr("None [...]"), this)),
      m_optionsButton(new QToolButton(this))
{
    // Pictures can't be loaded into inputs yet, so neither button has anything to do.
    m_fileButton->setEnabled(false);
    m_optionsButton->setText(tr("..."));
    m_optionsButton->setEnabled(false);
    firstRow()->addWidget(m_fileButton, 1);
    firstRow()->addWidget(m_optionsButton);
}

// The value of an image lies outside the sixteen bytes of an input; these have nothing to move.
void TweakImage::parseInputGui(const QDomElement&)
{
}
void TweakImage::updateInputFromWidget()
{
}
void TweakImage::updateWidgetFromInput()
{
}

} // namespace Zph::Applications::Player
