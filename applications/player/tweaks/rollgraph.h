#pragma once

#include "applications/player/tweaks/rollbase.h"

namespace Zph::Applications::Player {

// The panel of one graph.
class RollGraph : public RollBase
{
    Q_OBJECT

public:
    // `label` is shown as it stands; `toolTip` explains the graph.
    RollGraph(const QString& label, const QString& toolTip, QWidget* parent);

    QToolButton* presetsButton() const { return m_presetsButton; }

private:
    QToolButton* m_presetsButton;
};

} // namespace Zph::Applications::Player
