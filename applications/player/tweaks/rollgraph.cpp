#include "applications/player/tweaks/rollgraph.h"

#include "applications/player/tweaks/sharedicon.h"

#include <QHBoxLayout>
#include <QToolButton>

namespace Zph::Applications::Player {

RollGraph::RollGraph(const QString& label, const QString& toolTip, QWidget* parent)
    : RollBase(QStringLiteral("<b>%1</b>").arg(label.toHtmlEscaped()), parent),
      m_presetsButton(new QToolButton(headerFrame()))
{
    m_presetsButton->setText(tr("Presets"));
    m_presetsButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_presetsButton->setToolTip(tr("Presets menu"));
    m_presetsButton->setIcon(sharedIcon(QStringLiteral(":/zph/applications/player/images/preset.svg")));
    headerLayout()->addWidget(m_presetsButton);
    headerFrame()->setToolTip(plainToolTip(toolTip));
}

} // namespace Zph::Applications::Player
