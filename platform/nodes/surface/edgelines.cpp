#include "platform/nodes/surface/edgelines.h"

#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <utility>

namespace vellor::nodes {
namespace {

constexpr int kSteps = 8; // along an edge, at most

/// A pixel and its neighbours, as shares inside: s[1][1] in the middle.
struct Shares
{
    float s[3][3];

    Shares(const float* const* rows, int left, int x, int right, float threshold)
    {
        const int columns[3] = {left, x, right};
        for (int j = 0; j < 3; ++j)
            for (int i = 0; i < 3; ++i)
                s[j][i] = std::min(std::max(rows[j][columns[i]] - threshold + 0.5f, 0.0f), 1.0f);
    }
};

struct EdgeLine
{
    float normalX = 0.0f, normalY = 0.0f, place = 0.0f; // no normal: none
};

/// How far the line with this normal lies from a pixel's centre that leaves a share of the pixel inside.
float placeOf(float normalX, float normalY, float share)
{
    float great = scalar::absOf(normalX), little = scalar::absOf(normalY);
    if (great < little)
        std::swap(great, little);
    const float corner = 0.5f * little / great; // the share of which the line reaches a third side
    if (share < corner)
        return 0.5f * (great + little) - scalar::sqrtOf(2.0f * great * little * share);
    if (share > 1.0f - corner)
        return scalar::sqrtOf(2.0f * great * little * (1.0f - share)) - 0.5f * (great + little);
    return (0.5f - share) * great;
}

/// The side of a white or black pixel beyond which it is the other way round. Where there is more than one,
/// the pixels beyond have them.
EdgeLine sideOf(const Shares& shares)
{
    const float here = shares.s[1][1], other = 1.0f - here;
    const auto step = [&](float before, float after) {
        return static_cast<int>(after == other) - static_cast<int>(before == other);
    };
    const int x = step(shares.s[1][0], shares.s[1][2]), y = step(shares.s[0][1], shares.s[2][1]);
    if (std::abs(x) + std::abs(y) != 1)
        return {};
    const float inwards = other - here;
    return {static_cast<float>(x) * inwards, static_cast<float>(y) * inwards, 0.5f * inwards};
}

EdgeLine lineOf(const Shares& shares)
{
    const float(&s)[3][3] = shares.s;
    const float here = s[1][1];
    if (here <= 0.0f || here >= 1.0f)
        return sideOf(shares);
    constexpr float kDiagonal = 0.70710678f;
    const float x = (s[1][2] - s[1][0]) + kDiagonal * ((s[0][2] - s[0][0]) + (s[2][2] - s[2][0]));
    const float y = (s[2][1] - s[0][1]) + kDiagonal * ((s[2][0] - s[0][0]) + (s[2][2] - s[0][2]));
    const float length = scalar::sqrtOf(x * x + y * y);
    if (length < 1e-4f)
        return {};
    EdgeLine line{x / length, y / length, 0.0f};
    line.place = placeOf(line.normalX, line.normalY, here);
    return line;
}

/// `wrapped`, without a division for what lies within.
int around(int x, int size)
{
    return x >= 0 && x < size ? x : wrapped(x, size);
}

/// Narrows `from` to `to` to where start + s * step stays within half a pixel.
void clip(float start, float step, float& from, float& to)
{
    if (scalar::absOf(step) < 1e-6f)
        return;
    const float a = (-0.5f - start) / step, b = (0.5f - start) / step;
    from = std::max(from, std::min(a, b));
    to = std::min(to, std::max(a, b));
}

/// Squared distance to the piece of a line in a pixel whose centre lies at (x, y); `enough` where it is no
/// less.
float squareTo(const EdgeLine& line, float x, float y, float enough)
{
    const float across = x * line.normalX + y * line.normalY + line.place;
    if (across * across >= enough)
        return enough;
    const float footX = line.normalX * line.place, footY = line.normalY * line.place;
    float from = -1.0f, to = 1.0f;
    clip(footX, -line.normalY, from, to);
    clip(footY, line.normalX, from, to);
    const float along = (x + footX) * line.normalY - (y + footY) * line.normalX;
    const float beyond = along - std::max(std::min(along, to), std::min(from, to));
    return across * across + beyond * beyond;
}

} // namespace

void findEdgeLines(const ImageView& mask, float threshold, const MutableImage& lines, int y0, int y1)
{
    std::vector<float> lowest(mask.width), highest(mask.width); // of three rows
    for (int y = y0; y < y1; ++y) {
        const float* rows[3] = {rowOf(mask, 0, y - 1), rowOf(mask, 0, y), rowOf(mask, 0, y + 1)};
        for (int x = 0; x < mask.width; ++x) {
            lowest[x] = std::min(std::min(rows[0][x], rows[1][x]), rows[2][x]);
            highest[x] = std::max(std::max(rows[0][x], rows[1][x]), rows[2][x]);
        }
        for (int x = 0; x < mask.width; ++x) {
            const int left = x > 0 ? x - 1 : mask.width - 1, right = x + 1 < mask.width ? x + 1 : 0;
            EdgeLine line;
            if (std::min(std::min(lowest[left], lowest[x]), lowest[right]) < threshold &&
                std::max(std::max(highest[left], highest[x]), highest[right]) >= threshold)
                line = lineOf(Shares(rows, left, x, right, threshold));
            const bool there = line.normalX != 0.0f || line.normalY != 0.0f;
            rowOf(lines, 0, y)[x] = there ? 1.0f : 0.0f;
            rowOf(lines, 1, y)[x] = line.normalX;
            rowOf(lines, 2, y)[x] = line.normalY;
            rowOf(lines, 3, y)[x] = line.place;
        }
    }
}

EdgeDistanceRows::EdgeDistanceRows(const ImageView& mask, float threshold, const ImageView& lines,
                                   const ImageView& columns)
    : m_mask(mask), m_lines(lines), m_threshold(threshold), m_rows(columns, mask.width, mask.height),
      m_columns(mask.width + 1), m_rowsAway(mask.width)
{
}

float EdgeDistanceRows::distanceFrom(int x, int y, int column, int rows) const
{
    // The nearest pixel with a line lies above or below; to the left or right, whichever way is shorter.
    if (rowOf(m_lines, 0, y + rows)[column] < 0.5f)
        rows = -rows;
    int columns = column - x;
    if (columns > m_mask.width / 2)
        columns -= m_mask.width;
    else if (-columns > m_mask.width / 2)
        columns += m_mask.width;
    // From the best line among neighbours on to its neighbours, as far as it gets better.
    float best = kFar * kFar;
    for (int step = 0; step < kSteps; ++step) {
        const int fromX = columns, fromY = rows;
        for (int j = -1; j <= 1; ++j) {
            const std::ptrdiff_t row = around(y + fromY + j, m_lines.height) * m_lines.stride;
            for (int i = -1; i <= 1; ++i) {
                const std::ptrdiff_t at = row + around(x + fromX + i, m_lines.width);
                if (m_lines.planes[0][at] < 0.5f)
                    continue;
                const EdgeLine line{m_lines.planes[1][at], m_lines.planes[2][at], m_lines.planes[3][at]};
                const float square =
                    squareTo(line, static_cast<float>(fromX + i), static_cast<float>(fromY + j), best);
                if (square < best) {
                    best = square;
                    columns = fromX + i;
                    rows = fromY + j;
                }
            }
        }
        if (columns == fromX && rows == fromY)
            break;
    }
    return scalar::sqrtOf(best);
}

void EdgeDistanceRows::read(int y, float* distances)
{
    m_rows.nearest(y, m_columns.data(), m_rowsAway.data());
    const float* mask = rowOf(m_mask, 0, y);
    for (int x = 0; x < m_mask.width; ++x) {
        const float distance =
            m_columns[x] < 0 ? kFar : distanceFrom(x, y, m_columns[x], static_cast<int>(m_rowsAway[x]));
        distances[x] = mask[x] >= m_threshold ? distance : -distance;
    }
}

} // namespace vellor::nodes
