#pragma once

#include "applications/player/tweaks/tweakbase.h"

class QComboBox;

namespace Zph::Applications::Player {

// The engine's normal map format, by its number.
class TweakNormal : public TweakBase
{
    Q_OBJECT

public:
    TweakNormal(const TweakContext& context, QWidget* parent);

    WidgetCode widgetKind() const override { return WidgetCode::NormalFormat; }

protected:
    void parseInputGui(const QDomElement& element) override;
    void updateInputFromWidget() override;
    void updateWidgetFromInput() override;

private:
    QComboBox* m_comboBox;
};

} // namespace Zph::Applications::Player
