#include "view2d.h"

#include "applications/player/views/viewoutput2d.h"

#include <QIcon>
#include <QSplitter>
#include <QVBoxLayout>

namespace Zph::Applications::Player {

View2D::View2D(ViewHost& host, QWidget* parent)
    : Orn::Gui::LayoutWidget(parent), m_splitter(new QSplitter(this))
{
    setWindowTitle(tr("2D View"));
    setWindowIcon(QIcon(":/zph/applications/player/images/view2d.svg"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_splitter);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->addWidget(new ViewOutput2D(host));
}

ViewOutput2D* View2D::firstView() const
{
    return m_splitter->findChild<ViewOutput2D*>();
}

} // namespace Zph::Applications::Player
