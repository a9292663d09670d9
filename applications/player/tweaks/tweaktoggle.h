#pragma once

#include "applications/player/tweaks/tweakbase.h"

class QPushButton;

namespace Zph::Applications::Player {

// A number that is 0 or 1, as a button that stays down. Every number but 0 shows as down.
class TweakToggle : public TweakBase
{
    Q_OBJECT

public:
    TweakToggle(quint32 type, const TweakContext& context, QWidget* parent);

    WidgetCode widgetKind() const override { return WidgetCode::Toggle; }

protected:
    void parseInputGui(const QDomElement& element) override;
    void updateInputFromWidget() override;
    void updateWidgetFromInput() override;

private:
    void updateText();

    QPushButton* m_button;
    QString m_offText;
    QString m_onText;
};

} // namespace Zph::Applications::Player
