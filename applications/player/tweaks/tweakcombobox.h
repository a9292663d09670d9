#pragma once

#include "applications/player/tweaks/tweakbase.h"

class QComboBox;

namespace Zph::Applications::Player {

// An integer chosen from the named values of the description. A value that has no name shows as an empty box.
class TweakComboBox : public TweakBase
{
    Q_OBJECT

public:
    TweakComboBox(const TweakContext& context, QWidget* parent);

    WidgetCode widgetKind() const override { return WidgetCode::ComboBox; }

protected:
    void parseInputGui(const QDomElement& element) override;
    void updateInputFromWidget() override;
    void updateWidgetFromInput() override;

private:
    QComboBox* m_comboBox;
};

// A box that is as wide as its row allows, whatever its items say.
QComboBox* makeComboBox(QWidget* parent);

} // namespace Zph::Applications::Player
