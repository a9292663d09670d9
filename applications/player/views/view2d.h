#pragma once

#include "orncommon/gui/layoutwidget.h"

class QSplitter;

namespace Zph::Applications::Player {

class ViewHost;
class ViewOutput2D;

/// The dock of the 2D views: a splitter with one or more of them.
class View2D : public Orn::Gui::LayoutWidget
{
    Q_OBJECT

public:
    explicit View2D(ViewHost& host, QWidget* parent = nullptr);

    /// The view that the dock was made with; null once the user closed it.
    ViewOutput2D* firstView() const;

private:
    QSplitter* m_splitter;
};

} // namespace Zph::Applications::Player
