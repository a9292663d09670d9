// Fetching ahead what the next tile of a row reads of a picture, for the instruction set that is being
// compiled.

#if defined(VELLOR_NODES_PREFETCHING_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLOR_NODES_PREFETCHING_INL_H
#undef VELLOR_NODES_PREFETCHING_INL_H
#else
#define VELLOR_NODES_PREFETCHING_INL_H
#endif

#include "platform/nodes/tile-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {

/// Fetches what the next tile takes from a row of a map, by the values that this one takes: the rows of a
/// tile are too short for the processor to see the next ones coming.
HWY_INLINE void fetchForNextTile(const float* values)
{
    __builtin_prefetch(values + kTileWidth);
}

/// Values of a map for a vector of a tile's pixels.
HWY_INLINE F loadOfMap(const float* values)
{
    fetchForNextTile(values);
    return load(values);
}

/// Guesses where the next tile reads from how far the last two lay apart.
class NextBox
{
public:
    void foresee(const Tile& tile, const Box& box)
    {
        m_known = tile.x != m_x; // a tile that is read once more tells nothing new
        if (tile.x > m_x) {
            m_stepX = box.left - m_last.left;
            m_stepY = box.top - m_last.top;
        }
        m_last = box;
        m_x = tile.x;
    }

    /// Fetches the pixels that correspond to spanOf(y) of this tile's rows y0 to y1 - 1 into the second
    /// cache, which holds what a tile reads.
    template<class SpanOf>
    HWY_INLINE void prefetch(const ImageView& image, Edges edges, int y0, int y1, const SpanOf& spanOf) const
    {
        if (!m_known)
            return;
        for (int y = y0; y < y1; ++y) {
            const int row = standIn(y + m_stepY, image.height, edges);
            if (row < 0)
                continue;
            const Span span = spanOf(y);
            const int left = std::max(span.left + m_stepX, 0) / kLine * kLine;
            const int right = std::min(span.right + m_stepX, image.width);
            for (int c = 0; c < image.channels; ++c)
                for (int x = left; x < right; x += kLine)
                    __builtin_prefetch(image.planes[c] + row * image.stride + x, 0, kSecondCache);
        }
    }

private:
    static constexpr int kLine = 16; // floats of a line of the caches
    static constexpr int kSecondCache = 2;

    Box m_last;
    int m_x = 1 << 30, m_stepX = 0, m_stepY = 0;
    bool m_known = false;
};

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
