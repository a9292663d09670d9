#include "viewoutput.h"

namespace Zph::Applications::Player {

ViewOutput::ViewOutput(ViewHost& host, QWidget* parent) : Orn::Gui::LayoutWidget(parent), m_host(host)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setEnabled(false);
}

ViewOutput::~ViewOutput()
{
    m_host.unregisterViewer(this);
}

} // namespace Zph::Applications::Player
