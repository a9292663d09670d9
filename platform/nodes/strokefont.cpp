#include "platform/nodes/strokefont.h"

#include <algorithm>
#include <array>

namespace vellor::nodes {

namespace {

struct Point
{
    float x = 0.0f, y = 0.0f;
};

// Each glyph is a list of ways, each way a list of points, each point a digit for x in half units and a
// letter for y in units, c being the baseline, g the height of an x and i that of a capital. A way after ~ is
// a smooth curve that its points pull; one that ends where it starts is closed. One point is a dot.
// clang-format off
constexpr std::array<const char*, 95> kGlyphs = {
    "",                                   // space
    "0i0e 0c",                            // !
    "0i0g 2i2g",                          // "
    "2c3i 5c6i 0e8e 0g8g",                // #
    "~8h6i2i0h0g2f6f8e8d6c2c0d 4j4b",     // $
    "0c8i ~0i3i3g0g0i ~5e8e8c5c5e",       // %
    "~8c2h2i5i5g0e0c5c8e",                // &
    "0i0g",                               // '
    "~2j0h0d2b",                          // (
    "~0j2h2d0b",                          // )
    "3i3e 0h6f 6h0f",                     // *
    "4h4d 0f8f",                          // +
    "1c0b",                               // ,
    "0f5f",                               // -
    "0c",                                 // .
    "0b6j",                               // /
    "~0i8i8c0c0i 2d6h",                   // 0
    "1h4i4c 1c7c",                        // 1
    "~0g0i8i8g0c 0c8c",                   // 2
    "~0h0i8i8f3f ~3f8f8c0c0d",            // 3
    "6c6i0e8e",                           // 4
    "8i1i0f ~0f4g8g8c2c0d",               // 5
    "~7i0i0c8c8f0f0e",                    // 6
    "0i8i3c",                             // 7
    "~1i7i7f1f1i ~0f8f8c0c0f",            // 8
    "~1c8c8i0i0f8f8g",                    // 9
    "0g 0d",                              // :
    "1g 1d0b",                            // ;
    "7h0f7d",                             // <
    "0g7g 0e7e",                          // =
    "0h7f0d",                             // >
    "~0h0i7i7g3f3e 3c",                   // ?
    "~6e6g3g3e6e ~6e8d9f8i1i0f1c7c",      // @
    "0c4i8c 1e7e",                        // A
    "0c0i ~0i5i7i7f5f0f ~0f5f8f8c5c0c",   // B
    "~8h8i0i0c8c8d",                      // C
    "0c0i ~0i3i8i8c3c0c",                 // D
    "8i0i0c8c 0f6f",                      // E
    "8i0i0c 0f6f",                        // F
    "~8h8i0i0c8c8f 8f5f",                 // G
    "0c0i 8c8i 0f8f",                     // H
    "0i0c",                               // I
    "~6i6e6c0c0e",                        // J
    "0c0i 8i0e 3f8c",                     // K
    "0i0c7c",                             // L
    "0c0i4e8i8c",                         // M
    "0c0i8c8i",                           // N
    "~0i8i8c0c0i",                        // O
    "0c0i ~0i5i8i8f5f0f",                 // P
    "~0i8i8c0c0i 5e8c",                   // Q
    "0c0i ~0i5i8i8f5f0f 4f8c",            // R
    "~8h8i0i0f8f8c0c0d",                  // S
    "0i8i 4i4c",                          // T
    "~0i0e0c8c8e8i",                      // U
    "0i4c8i",                             // V
    "0i2c4h6c8i",                         // W
    "0c8i 0i8c",                          // X
    "0i4f8i 4f4c",                        // Y
    "0i8i0c8c",                           // Z
    "2j0j0b2b",                           // [
    "0j6b",                               // backslash
    "0j2j2b0b",                           // ]
    "0g3i6g",                             // ^
    "0b8b",                               // _
    "0i2h",                               // `
    "~0g6g6c0c0g 6g6c",                   // a
    "0i0c ~0g6g6c0c0g",                   // b
    "~6f6g0g0c6c6d",                      // c
    "6i6c ~0g6g6c0c0g",                   // d
    "0e6e ~6e6g0g0c6c6d",                 // e
    "~5i2i2f 2f2c 0g4g",                  // f
    "~0g6g6c0c0g ~6g6b6a0a0b",            // g
    "0i0c ~0e0g6g6e 6e6c",                // h
    "0g0c 0i",                            // i
    "~2g2b2a0a 2i",                       // j
    "0i0c 5g0d 2e6c",                     // k
    "0i0c",                               // l
    "0g0c ~0e0g4g4e 4e4c ~4e4g8g8e 8e8c", // m
    "0g0c ~0e0g6g6e 6e6c",                // n
    "~0g6g6c0c0g",                        // o
    "0g0a ~0g6g6c0c0g",                   // p
    "6g6a ~0g6g6c0c0g",                   // q
    "0g0c ~0e0g4g5f",                     // r
    "~5f5g0g0e5e5c0c0d",                  // s
    "2h2e ~2e2c5c 0g5g",                  // t
    "0g0e ~0e0c6c6e 6g6c",                // u
    "0g3c6g",                             // v
    "0g2c4f6c8g",                         // w
    "0c6g 0g6c",                          // x
    "0g3c 6g1a",                          // y
    "0g6g0c6c",                           // z
    "~3j1j1g0f ~0f1e1b3b",                // {
    "0j0b",                               // |
    "~0j2j2g3f ~3f2e2b0b",                // }
    "~0f2g4e6f",                          // ~
};
constexpr const char* kUnknown = "0i6i6c0c0i";
constexpr float kGap = 1.5f, kSpace = 3.0f;

Point between(Point a, Point b, float t)
{
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

/// Cuts corners off, again and again (G. Chaikin): the way comes close to a quadratic B-spline. Open ways
/// keep their ends.
std::vector<Point> smoothed(std::vector<Point> way)
{
    const bool closed = way.front().x == way.back().x && way.front().y == way.back().y;
    for (int round = 0; round < 4; ++round) {
        std::vector<Point> next;
        for (std::size_t i = 0; i + 1 < way.size(); ++i) {
            next.push_back(between(way[i], way[i + 1], 0.25f));
            next.push_back(between(way[i], way[i + 1], 0.75f));
        }
        if (closed) {
            next.push_back(next.front());
        } else {
            next.front() = way.front();
            next.back() = way.back();
        }
        way = std::move(next);
    }
    return way;
}

void addWay(std::string_view text, Glyph& glyph)
{
    const bool smooth = text.front() == '~';
    std::vector<Point> way;
    for (std::size_t i = smooth ? 1 : 0; i + 1 < text.size(); i += 2)
        way.push_back({0.5f * static_cast<float>(text[i] - '0'), static_cast<float>(text[i + 1] - 'c')});
    for (const Point& point : way)
        glyph.width = std::max(glyph.width, point.x);
    if (smooth)
        way = smoothed(std::move(way));
    if (way.size() == 1)
        way.push_back(way.front());
    for (std::size_t i = 0; i + 1 < way.size(); ++i)
        glyph.strokes.push_back({way[i].x, way[i].y, way[i + 1].x, way[i + 1].y});
}

} // namespace

Glyph glyphOf(char32_t character)
{
    Glyph glyph;
    if (character == U' ') {
        glyph.width = kSpace;
        return glyph;
    }
    std::string_view ways = character > 32 && character < 127 ? kGlyphs[character - 32] : kUnknown;
    while (!ways.empty()) {
        const std::size_t end = std::min(ways.find(' '), ways.size());
        addWay(ways.substr(0, end), glyph);
        ways.remove_prefix(std::min(end + 1, ways.size()));
    }
    glyph.width += kGap;
    return glyph;
}

} // namespace vellor::nodes
