#include "timeline.h"

#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>

namespace Zph::Applications::Player {

Timeline::Timeline(QWidget* parent) : Orn::Gui::LayoutWidget(parent)
{
    setWindowTitle(tr("Timeline"));
    setWindowIcon(QIcon(":/zph/applications/player/images/timeline.svg"));
    setEnabled(false);
    auto* notice = new QLabel(tr("This build plays no animations. Set the time in the parameters."), this);
    notice->setAlignment(Qt::AlignCenter);
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(notice);
}

} // namespace Zph::Applications::Player
