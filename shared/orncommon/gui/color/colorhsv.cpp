#include "orncommon/gui/color/colorhsv.h"

#include <algorithm>
#include <cmath>

namespace Orn::Gui {

ColorHSVf toHSV(const Core::ColorRGBAf& color, const ColorHSVf& previous)
{
    const float r = std::clamp(color.r, 0.0F, 1.0F);
    const float g = std::clamp(color.g, 0.0F, 1.0F);
    const float b = std::clamp(color.b, 0.0F, 1.0F);
    const float high = std::max({r, g, b});
    const float range = high - std::min({r, g, b});
    ColorHSVf result{previous.h, previous.s, high};
    if (high > 0.0F)
        result.s = range / high;
    if (range <= 0.0F)
        return result;
    float sixths = 0.0F;
    if (high == r)
        sixths = (g - b) / range;
    else if (high == g)
        sixths = (b - r) / range + 2.0F;
    else
        sixths = (r - g) / range + 4.0F;
    result.h = sixths < 0.0F ? sixths / 6.0F + 1.0F : sixths / 6.0F;
    return result;
}

Core::ColorRGBAf toRGB(const ColorHSVf& color, float alpha)
{
    // Each channel is a trapezoid over the hue: full for two sixths around its own place, then falling.
    const auto channel = [&color](float place) {
        const float distance = std::fabs((color.h - place) - std::round(color.h - place)) * 6.0F;
        const float fullness = std::clamp(2.0F - distance, 0.0F, 1.0F);
        return color.v * (1.0F - color.s * (1.0F - fullness));
    };
    return {channel(0.0F), channel(1.0F / 3.0F), channel(2.0F / 3.0F), alpha};
}

} // namespace Orn::Gui
