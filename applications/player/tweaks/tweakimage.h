#pragma once

#include "applications/player/tweaks/tweakbase.h"

class QPushButton;
class QToolButton;

namespace Zph::Applications::Player {

// An image. The engine starts without one, and as long as that is so the row says "None".
class TweakImage : public TweakBase
{
    Q_OBJECT

public:
    TweakImage(const TweakContext& context, QWidget* parent);

    bool isImage() const override { return true; }

protected:
    void parseInputGui(const QDomElement& element) override;
    void updateInputFromWidget() override;
    void updateWidgetFromInput() override;

private:
    QPushButton* m_fileButton;
    QToolButton* m_optionsButton;
};

} // namespace Zph::Applications::Player
