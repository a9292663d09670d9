#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"
#include "platform/nodes/strokefont.h"

#include <algorithm>

namespace vellor::nodes {
namespace {

constexpr std::size_t kMostCharacters = 4096;

struct TextState : State
{
    std::vector<Stroke> strokes; // in pixels, y down, with the copies that wrap around
    float radius = 1.0f;         // of the pen, in pixels
};

/// Strokes of lines of text, in the font's units, each line moved by its alignment: 0 left, 0.5 middle, 1
/// right.
std::vector<Stroke> layOut(std::u32string_view text, float alignment)
{
    std::vector<Stroke> strokes;
    std::size_t lineStart = 0;
    float x = 0.0f, y = 0.0f;
    const auto endLine = [&] {
        for (std::size_t i = lineStart; i < strokes.size(); ++i) {
            strokes[i].x0 -= x * alignment;
            strokes[i].x1 -= x * alignment;
        }
        lineStart = strokes.size();
        x = 0.0f;
        y -= kLineHeight;
    };
    for (const char32_t character : text.substr(0, kMostCharacters)) {
        if (character == U'\n') {
            endLine();
            continue;
        }
        const Glyph glyph = glyphOf(character);
        for (const Stroke& stroke : glyph.strokes)
            strokes.push_back({stroke.x0 + x, stroke.y0 + y, stroke.x1 + x, stroke.y1 + y});
        x += glyph.width;
    }
    const float lines = (-y) / kLineHeight + 1.0f;
    endLine();
    // The block's middle is at height 0.
    const float middle = 0.5f * ((lines - 1.0f) * kLineHeight - kCapitalHeight);
    for (Stroke& stroke : strokes) {
        stroke.y0 += middle;
        stroke.y1 += middle;
    }
    return strokes;
}

/// Adds a stroke and what of it comes in at the other edges.
void addWrapped(const Stroke& stroke, const Setup& setup, TextState& state)
{
    const auto width = static_cast<float>(setup.width), height = static_cast<float>(setup.height);
    const float reach = state.radius + 1.0f;
    for (float dy = -height; dy <= height; dy += height) {
        for (float dx = -width; dx <= width; dx += width) {
            const Stroke moved{stroke.x0 + dx, stroke.y0 + dy, stroke.x1 + dx, stroke.y1 + dy};
            if (std::max(moved.x0, moved.x1) > -reach && std::min(moved.x0, moved.x1) < width + reach &&
                std::max(moved.y0, moved.y1) > -reach && std::min(moved.y0, moved.y1) < height + reach)
                state.strokes.push_back(moved);
        }
    }
}

std::unique_ptr<State> prepareText(const Setup& setup)
{
    auto state = std::make_unique<TextState>();
    const ParameterValue* p = setup.parameters;
    const float capital = held(p[1].f[0], 1e-3f, 4.0f) * static_cast<float>(setup.height);
    const float unit = capital / kCapitalHeight;
    state->radius = std::max(0.5f * held(p[2].f[0], 0.0f, 1.0f) * capital, 0.5f);
    const float x = p[3].f[0] * static_cast<float>(setup.width),
                y = p[3].f[1] * static_cast<float>(setup.height);
    for (const Stroke& stroke : layOut(p[0].text, 0.5f * static_cast<float>(held(p[4].i[0], 0, 2))))
        addWrapped({x + stroke.x0 * unit, y - stroke.y0 * unit, x + stroke.x1 * unit, y - stroke.y1 * unit},
                   setup, *state);
    return state;
}

/// Lowers the squared distances of pixels to what the stroke gives them, where it is within reach.
void approach(const Stroke& stroke, float y, float reach, const RowJob& job)
{
    const float dx = stroke.x1 - stroke.x0, dy = stroke.y1 - stroke.y0;
    const float square = dx * dx + dy * dy;
    const float inverse = square > 0.0f ? 1.0f / square : 0.0f;
    const float left = std::min(stroke.x0, stroke.x1) - reach - static_cast<float>(job.x);
    const float right = std::max(stroke.x0, stroke.x1) + reach - static_cast<float>(job.x);
    const int from = static_cast<int>(held(left, 0.0f, static_cast<float>(job.count)));
    const int to = static_cast<int>(held(right + 1.0f, 0.0f, static_cast<float>(job.count)));
    const float py = y - stroke.y0;
    for (int i = from; i < to; ++i) {
        const float px = static_cast<float>(job.x + i) + 0.5f - stroke.x0;
        const float t = held((px * dx + py * dy) * inverse, 0.0f, 1.0f);
        const float ex = px - t * dx, ey = py - t * dy;
        job.result[0][i] = std::min(job.result[0][i], ex * ex + ey * ey);
    }
}

void textRow(const RowJob& job)
{
    const auto& state = static_cast<const TextState&>(*job.state);
    const float reach = state.radius + 1.0f, y = static_cast<float>(job.y) + 0.5f;
    std::fill_n(job.result[0], job.count, reach * reach);
    for (const Stroke& stroke : state.strokes)
        if (std::min(stroke.y0, stroke.y1) - reach < y && y < std::max(stroke.y0, stroke.y1) + reach)
            approach(stroke, y, reach, job);
    for (int i = 0; i < job.count; ++i)
        job.result[0][i] = held(state.radius + 0.5f - scalar::sqrtOf(job.result[0][i]), 0.0f, 1.0f);
}

} // namespace

const NodeDeclaration textNode{
    "text",
    "Text",
    "Sources",
    "Lines of text, written with a round pen in a plain face of its own that has the characters of ASCII. "
    "Wraps around.",
    ResultChannels::Grey,
    Chance::None,
    {},
    {{"text", ParameterType::Text, {}, 0, 1, "What is written; line feeds start new lines."},
     {"size", ParameterType::Float, {0.2}, 0, 1, "Height of a capital, in shares of the picture's height."},
     {"thickness", ParameterType::Float, {0.14}, 0, 1, "Width of the pen, in shares of a capital's height."},
     {"position",
      ParameterType::Float2,
      {0.5, 0.5},
      0,
      1,
      "Where the text stands, in shares of the picture's width and height; in height, its middle."},
     {"alignment",
      ParameterType::Choice,
      {1},
      0,
      2,
      "What of each line stands there.",
      {"left", "middle", "right"}}},
    prepareText,
    textRow};

} // namespace vellor::nodes
