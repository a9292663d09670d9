#pragma once

#include "orncommon/gui/layoutwidget.h"

namespace Zph::Applications::Player {

/// The panel of the timeline. Time is set in the "Time" row of the parameters; nothing plays.
class Timeline : public Orn::Gui::LayoutWidget
{
    Q_OBJECT

public:
    explicit Timeline(QWidget* parent = nullptr);
};

} // namespace Zph::Applications::Player
