#pragma once

#include <string_view>
#include <vector>

namespace vellor::nodes {

/// A piece of a pen's way, in units of a sixth of a capital's height: x to the right, y up from the baseline.
struct Stroke
{
    float x0 = 0.0f, y0 = 0.0f, x1 = 0.0f, y1 = 0.0f;
};

constexpr float kCapitalHeight = 6.0f;
constexpr float kLineHeight = 10.0f;

/// The ways of one character; width is how far the next one is. Characters outside ASCII 32 to 126 show as an
/// empty box.
struct Glyph
{
    std::vector<Stroke> strokes;
    float width = 0.0f;
};

Glyph glyphOf(char32_t character);

} // namespace vellor::nodes
