#pragma once

#include "applications/player/tweaks/tweakbase.h"

class QComboBox;
class QToolButton;

namespace Zph::Applications::Player {

// The engine's output size: the base-2 logarithms of width and height. Its first value always goes to the
// engine, since the engine's own default may be another.
class TweakOutputSize : public TweakBase
{
    Q_OBJECT

public:
    TweakOutputSize(const TweakContext& context, QWidget* parent);

    WidgetCode widgetKind() const override { return WidgetCode::OutputSize; }

protected:
    void parseInputGui(const QDomElement& element) override;
    void updateInputFromWidget() override;
    void updateWidgetFromInput() override;

private:
    QComboBox* makeSizeBox(int limit);
    void sizeChosen(int logarithm);
    void linkToggled(bool linked);

    QComboBox* m_widthBox;
    QToolButton* m_linkButton;
    QComboBox* m_heightBox;
};

} // namespace Zph::Applications::Player
