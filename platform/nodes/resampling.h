#pragma once

// What reading a picture at places that vary from pixel to pixel is told: how to read between pixels and what
// lies beyond the edges; and copies of rectangles of pictures in which the edges are already dealt with.

#include "platform/nodes/rows.h"

#include <vector>

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

/// A rectangle of a channel, copied out with what stands beyond the edges.
class Window
{
public:
    void fill(const ImageView& image, int channel, Edges edges, const Box& box)
    {
        m_box = box;
        m_stride = (box.width() + kSpare - 1) / kSpare * kSpare;
        m_pixels.resize(std::size_t(m_stride) * box.height() + kSpare);
        for (int y = 0; y < box.height(); ++y) {
            float* row = m_pixels.data() + std::size_t(y) * m_stride;
            const int from = standIn(box.top + y, image.height, edges);
            if (from < 0)
                std::fill_n(row, box.width(), 0.0f);
            else
                fillRow(image.planes[channel] + from * image.stride, image.width, edges, row);
        }
    }

    const Box& box() const { return m_box; }
    int stride() const { return m_stride; }
    /// Pixel (x, y) of the picture. Whole vectors may be read from any pixel of the box.
    const float* at(int x, int y) const
    {
        return m_pixels.data() + std::size_t(y - m_box.top) * m_stride + (x - m_box.left);
    }

private:
    static constexpr int kSpare = 16;

    void fillRow(const float* from, int size, Edges edges, float* row) const
    {
        if (edges == Edges::Repeat)
            return copyWrapped(from, size, m_box.left, m_box.width(), row);
        const int first = std::clamp(m_box.left, 0, size), last = std::clamp(m_box.right, first, size);
        const auto beyond = [&](int x) {
            const int at = standIn(x, size, edges);
            row[x - m_box.left] = at < 0 ? 0.0f : from[at];
        };
        for (int x = m_box.left; x < std::min(first, m_box.right); ++x)
            beyond(x);
        std::copy(from + first, from + last, row + (first - m_box.left));
        for (int x = std::max(last, m_box.left); x < m_box.right; ++x)
            beyond(x);
    }

    std::vector<float> m_pixels;
    Box m_box;
    int m_stride = 0;
};

} // namespace vellor::nodes
