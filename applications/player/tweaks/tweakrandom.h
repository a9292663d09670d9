#pragma once

#include "applications/player/tweaks/tweakbase.h"

class QLineEdit;

namespace Zph::Applications::Player {

// The engine's random seed: typed as a decimal or a "0x" hexadecimal number, or drawn.
class TweakRandom : public TweakBase
{
    Q_OBJECT

public:
    TweakRandom(const TweakContext& context, QWidget* parent);

    WidgetCode widgetKind() const override { return WidgetCode::RandomSeed; }

public slots:
    void drawRandom();
    // Takes the line's text as the seed. Text that is no number is wiped with a beep, and the seed stays.
    void editingFinished();

protected:
    void parseInputGui(const QDomElement& element) override;
    void updateInputFromWidget() override;
    void updateWidgetFromInput() override;

private:
    QLineEdit* m_lineEdit;
    QString m_seenText; // the line as the program left it
};

} // namespace Zph::Applications::Player
