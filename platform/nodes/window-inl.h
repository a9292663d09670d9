// Part of a picture copied out, for the instruction set that is being compiled.

#if defined(VELLOR_NODES_WINDOW_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLOR_NODES_WINDOW_INL_H
#undef VELLOR_NODES_WINDOW_INL_H
#else
#define VELLOR_NODES_WINDOW_INL_H
#endif

#include "platform/nodes/resampling.h"
#include "platform/nodes/rowbuffer.h"
#include "platform/nodes/simd.h"

#include <vector>

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {

/// Four planes' values side by side, for pixels that follow one another.
class Interleaver
{
public:
    /// Pixels that are written at once.
    static constexpr int kStep = kLanes == 16 ? 4 : kLanes;

    HWY_INLINE Interleaver()
    {
        const hn::RebindToUnsigned<FloatTag> words;
        const auto lane = hn::Iota(words, 0);
        m_order = hn::Or(hn::ShiftLeft<2>(hn::And(lane, hn::Set(words, 3))), hn::ShiftRight<2>(lane));
    }

    template<int lanes = kLanes> HWY_INLINE void copy(const float* const* planes, int x, float* result) const
    {
        const hn::CappedTag<float, lanes> tag;
        if constexpr (lanes == 16) {
            // Four pixels' values are brought together by the loads, so that one permutation sorts them.
            const hn::FixedTag<float, lanes / 4> few;
            const hn::FixedTag<float, lanes / 2> half;
            const auto together = hn::Combine(
                tag, hn::Combine(half, hn::LoadU(few, planes[3] + x), hn::LoadU(few, planes[2] + x)),
                hn::Combine(half, hn::LoadU(few, planes[1] + x), hn::LoadU(few, planes[0] + x)));
            hn::StoreU(hn::TableLookupLanes(together, hn::IndicesFromVec(tag, m_order)), tag, result);
        } else {
            hn::StoreInterleaved4(hn::LoadU(tag, planes[0] + x), hn::LoadU(tag, planes[1] + x),
                                  hn::LoadU(tag, planes[2] + x), hn::LoadU(tag, planes[3] + x), tag, result);
        }
    }

private:
    hn::Vec<WordTag> m_order; // of a vector's lanes
};

/// A rectangle of a channel, or of four with their values beside one another, copied out with what stands
/// beyond the edges.
template<int channels> class Window
{
public:
    /// Copies spanOf(y) of each row y of the box, and as many more as vectors take.
    template<class SpanOf>
    HWY_INLINE void fill(const ImageView& image, int channel, Edges edges, const Box& box,
                         const SpanOf& spanOf)
    {
        m_box = box;
        m_stride = (box.width() + kSpare - 1) / kSpare * kSpare;
        reserve(std::size_t(m_stride) * box.height() * channels + kSpare);
        m_lines.resize(std::size_t(m_stride) * channels);
        const bool inside = box.left >= 0 && box.right <= image.width && box.left + m_stride <= image.stride;
        for (int y = box.top; y < box.bottom; ++y) {
            float* row = m_pixels.data() + std::size_t(y - box.top) * m_stride * channels;
            const int from = standIn(y, image.height, edges);
            if (from < 0)
                std::fill_n(row, m_stride * channels, 0.0f);
            else
                fillRow(image, channel, edges, from, inside, spanOf(y), row);
        }
    }

    HWY_INLINE void fill(const ImageView& image, int channel, Edges edges, const Box& box)
    {
        fill(image, channel, edges, box, [&](int) { return Span{box.left, box.right}; });
    }

    const Box& box() const { return m_box; }
    int stride() const { return m_stride; } // in pixels
    /// Pixel (x, y) of the picture. Whole vectors may be read from any pixel of the box.
    HWY_INLINE const float* at(int x, int y) const
    {
        return m_pixels.data() + (std::size_t(y - m_box.top) * m_stride + (x - m_box.left)) * channels;
    }

private:
    static constexpr int kSpare = 16, kAligned = channels == 4 ? Interleaver::kStep : kLanes;

    void reserve(std::size_t floats)
    {
        if (floats <= m_room)
            return;
        m_pixels = RowBuffer(floats + floats / 2);
        m_room = floats + floats / 2;
    }

    HWY_INLINE void fillRow(const ImageView& image, int channel, Edges edges, int y, bool inside, Span span,
                            float* row)
    {
        const float* lines[channels];
        for (int c = 0; c < channels; ++c) {
            const float* from = image.planes[channel + c] + y * image.stride;
            lines[c] = inside ? from + m_box.left : m_lines.data() + c * m_stride;
            if (!inside)
                copyBeyond(from, image.width, edges, m_box.left, m_box.width(),
                           m_lines.data() + c * m_stride);
        }
        const int first = std::max(span.left - m_box.left, 0) / kAligned * kAligned;
        const int last = std::min(span.right, m_box.right) - m_box.left;
        if constexpr (channels == 4) {
            const Interleaver interleaver;
            for (int x = first; x < last; x += Interleaver::kStep)
                interleaver.copy(lines, x, row + 4 * x);
        } else {
            const FloatTag tag;
            for (int x = first; x < last; x += kLanes)
                hn::StoreU(hn::LoadU(tag, lines[0] + x), tag, row + x);
        }
    }

    RowBuffer m_pixels{0};
    std::size_t m_room = 0; // floats
    std::vector<float> m_lines;
    Box m_box;
    int m_stride = 0;
};

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
