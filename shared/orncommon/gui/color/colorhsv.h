#pragma once

#include "orncommon/core/colorrgbaf.h"

namespace Orn::Gui {

/// Hue in turns (0 red, 1/3 green, 2/3 blue; below 1), saturation and value, each 0 to 1.
struct ColorHSVf
{
    float h = 0.0F;
    float s = 0.0F;
    float v = 0.0F;
};

/// The hue of a grey and the saturation of black are not in the colour: they are taken from `previous`, so
/// that a colour that passes through grey keeps its hue. Channels are clamped to 0 to 1.
ColorHSVf toHSV(const Core::ColorRGBAf& color, const ColorHSVf& previous = {});

Core::ColorRGBAf toRGB(const ColorHSVf& color, float alpha);

} // namespace Orn::Gui
