#pragma once

// What reading a picture at places that vary from pixel to pixel is told: how to read between pixels and what
// lies beyond the edges.

#include "platform/nodes/rows.h"

namespace vellor::nodes {

enum class PixelFilter
{
    Bilinear,
    Bicubic, // Catmull-Rom's spline: through the pixels, exact for parabolas
    Nearest
};

enum class Edges
{
    None, // 0 beyond them
    Repeat,
    Mirror // the pixel at the edge comes twice
};

struct Reading
{
    PixelFilter filter = PixelFilter::Bilinear;
    Edges edges = Edges::Repeat;
};

/// The parameter "filter" of kinds that read between pixels; its value is a PixelFilter.
inline ParameterDeclaration filterParameter()
{
    return {
        "filter",
        ParameterType::Choice,
        {0},
        0,
        2,
        "How the picture is read between its pixels; bicubic is Catmull-Rom's spline, which keeps detail.",
        {"bilinear", "bicubic", "nearest"}};
}

/// The pixel that stands for pixel x of a line of `size`; -1 for none.
inline int standIn(int x, int size, Edges edges)
{
    if (x >= 0 && x < size)
        return x;
    if (edges == Edges::None)
        return -1;
    if (edges == Edges::Repeat)
        return wrapped(x, size);
    const int turned = wrapped(x, 2 * size);
    return turned < size ? turned : 2 * size - 1 - turned;
}

/// Pixels left to right - 1, top to bottom - 1, which may lie outside a picture.
struct Box
{
    int left = 0, top = 0, right = 0, bottom = 0;
    int width() const { return right - left; }
    int height() const { return bottom - top; }
};

/// Columns left to right - 1 of a row.
struct Span
{
    int left = 0, right = 0;
};

/// Pixels x to x + count - 1 of a row of `size`, with what stands beyond its edges.
inline void copyBeyond(const float* row, int size, Edges edges, int x, int count, float* result)
{
    if (edges == Edges::Repeat)
        return copyWrapped(row, size, x, count, result);
    const int first = std::clamp(-x, 0, count), last = std::clamp(size - x, first, count);
    const auto beyond = [&](int i) {
        const int from = standIn(x + i, size, edges);
        result[i] = from < 0 ? 0.0f : row[from];
    };
    for (int i = 0; i < first; ++i)
        beyond(i);
    std::copy(row + (x + first), row + (x + last), result + first);
    for (int i = last; i < count; ++i)
        beyond(i);
}

} // namespace vellor::nodes
