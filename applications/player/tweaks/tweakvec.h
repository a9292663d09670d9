#pragma once

#include "applications/player/tweaks/tweakbase.h"

#include <vector>

class QDoubleSpinBox;

namespace Zph::Applications::Player {

// Two to four numbers in boxes side by side.
class TweakVec : public TweakBase
{
    Q_OBJECT

public:
    TweakVec(quint32 type, const TweakContext& context, QWidget* parent);

public slots:
    // A box was changed by the user.
    virtual void valueChanged();

protected:
    void parseInputGui(const QDomElement& element) override;
    void updateInputFromWidget() override;
    void updateWidgetFromInput() override;

    int boxCount() const { return int(m_boxes.size()); }
    QDoubleSpinBox* box(int i) const { return m_boxes.at(size_t(i)); }

private:
    std::vector<QDoubleSpinBox*> m_boxes;
};

} // namespace Zph::Applications::Player
