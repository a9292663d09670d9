#pragma once

#include "orncommon/gui/color/coloredit.h"

namespace Orn::Gui {

class ColorHexa;
class ColorSlider;
class PreviewColorEdit;
class SlidersColorEdit;
class SpectrumColorEdit;

/// The whole editor, a floating window: field of hue and saturation, value, channels, hexadecimal text, and
/// the new colour beside the old. All that is edited lies in 0 to 1.
class ColorEditor : public ColorEdit
{
    Q_OBJECT

public:
    explicit ColorEditor(QWidget* parent = nullptr);

    /// Sets colour and old colour, in silence.
    void setColor(const Core::ColorRGBAf& color);
    /// Without alpha its slider is hidden and a colour stays opaque.
    void setAlphaEnabled(bool enabled);

protected:
    void updateFromColor() override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void build();
    void join(ColorEdit& part);
    void onPartChanged(const Core::ColorRGBAf& color);

    bool m_alphaEnabled = true;
    SpectrumColorEdit* m_spectrum = nullptr;
    ColorSlider* m_value = nullptr;
    SlidersColorEdit* m_sliders = nullptr;
    ColorHexa* m_hexa = nullptr;
    PreviewColorEdit* m_preview = nullptr;
};

} // namespace Orn::Gui
