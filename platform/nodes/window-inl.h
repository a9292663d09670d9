// Part of a picture copied out, for the instruction set that is being compiled.

#if defined(VELLOR_NODES_WINDOW_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLOR_NODES_WINDOW_INL_H
#undef VELLOR_NODES_WINDOW_INL_H
#else
#define VELLOR_NODES_WINDOW_INL_H
#endif

#include "platform/nodes/resampling.h"
#include "platform/nodes/simd.h"

#include <vector>

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {

/// A rectangle of a channel, or of four with their values beside one another, copied out with what stands
/// beyond the edges.
template<int channels> class Window
{
public:
    HWY_INLINE void fill(const ImageView& image, int channel, Edges edges, const Box& box)
    {
        m_box = box;
        m_stride = (box.width() + kSpare - 1) / kSpare * kSpare;
        m_pixels.resize(std::size_t(m_stride) * box.height() * channels + kSpare);
        m_lines.resize(std::size_t(m_stride) * channels);
        const bool inside = box.left >= 0 && box.right <= image.width && box.left + m_stride <= image.stride;
        for (int y = 0; y < box.height(); ++y) {
            float* row = m_pixels.data() + std::size_t(y) * m_stride * channels;
            const int from = standIn(box.top + y, image.height, edges);
            if (from < 0)
                std::fill_n(row, m_stride * channels, 0.0f);
            else
                fillRow(image, channel, edges, from, inside, row);
        }
    }

    const Box& box() const { return m_box; }
    int stride() const { return m_stride; } // in pixels
    /// Pixel (x, y) of the picture. Whole vectors may be read from any pixel of the box.
    HWY_INLINE const float* at(int x, int y) const
    {
        return m_pixels.data() + (std::size_t(y - m_box.top) * m_stride + (x - m_box.left)) * channels;
    }

private:
    static constexpr int kSpare = 16;

    HWY_INLINE void fillRow(const ImageView& image, int channel, Edges edges, int y, bool inside, float* row)
    {
        const float* lines[channels];
        for (int c = 0; c < channels; ++c) {
            const float* from = image.planes[channel + c] + y * image.stride;
            lines[c] = inside ? from + m_box.left : m_lines.data() + c * m_stride;
            if (!inside)
                copyBeyond(from, image.width, edges, m_box.left, m_box.width(),
                           m_lines.data() + c * m_stride);
        }
        const FloatTag tag;
        for (int x = 0; x < m_stride; x += kLanes) {
            if constexpr (channels == 4)
                hn::StoreInterleaved4(hn::LoadU(tag, lines[0] + x), hn::LoadU(tag, lines[1] + x),
                                      hn::LoadU(tag, lines[2] + x), hn::LoadU(tag, lines[3] + x), tag,
                                      row + 4 * x);
            else
                hn::StoreU(hn::LoadU(tag, lines[0] + x), tag, row + x);
        }
    }

    std::vector<float> m_pixels, m_lines;
    Box m_box;
    int m_stride = 0;
};

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
