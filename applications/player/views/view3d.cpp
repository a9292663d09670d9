#include "view3d.h"

#include <QIcon>
#include <QLabel>
#include <QVBoxLayout>

namespace Zph::Applications::Player {

View3D::View3D(ViewHost& host, QWidget* parent) : ViewOutput(host, parent)
{
    setWindowTitle(tr("3D View"));
    setWindowIcon(QIcon(":/zph/applications/player/images/view3d.svg"));
    auto* notice = new QLabel(tr("This build has no 3D view. The outputs are shown in the 2D view."), this);
    notice->setAlignment(Qt::AlignCenter);
    notice->setWordWrap(true);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(notice);
}

void View3D::setPackage(std::shared_ptr<const PackageModel>)
{
    setEnabled(true);
}

void View3D::clearView()
{
    setEnabled(false);
}

} // namespace Zph::Applications::Player
