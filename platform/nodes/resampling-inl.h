// Reading a picture at places that vary from pixel to pixel, for the instruction set that is being compiled.
//
// The result is worked through in tiles. The places of a tile are written down first. The part of the picture
// that they cover is then copied, a colour's channels side by side, with what stands beyond the edges, so
// that the reads need no care and stay near whichever way they run; neighbours in a row come with one read.
// Colours whose places follow no simple shape are gathered from their planes instead, unless edges are near.
// While a tile is read, what the next one will probably copy is fetched.
// Where a tile's places lie too far apart for that, pixels are read where they are.
//
// A place is a whole pixel, the anchor of the tile's row, and a distance from it in pixels. A distance is
// small, so its fraction is exact to a few millionths of a pixel in pictures of any size. Nothing depends on
// the rows that a tile has, which follow from how the work is cut.

#if defined(VELLOR_NODES_RESAMPLING_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLOR_NODES_RESAMPLING_INL_H
#undef VELLOR_NODES_RESAMPLING_INL_H
#else
#define VELLOR_NODES_RESAMPLING_INL_H
#endif

#include "platform/nodes/interpolation-inl.h"
#include "platform/nodes/prefetching-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {

/// Reads a picture at the places of tiles.
class TileReader
{
public:
    TileReader(const ImageView& image, const Reading& reading) : m_image(image), m_reading(reading) {}

    /// Calls take(channel, i, row, values) for each vector of each channel of the tile.
    template<class Take> HWY_INLINE void read(const Tile& tile, const Take& take)
    {
        switch (m_reading.filter) {
        case PixelFilter::Bilinear:
            return readBy<PixelFilter::Bilinear>(tile, take);
        case PixelFilter::Bicubic:
            return readBy<PixelFilter::Bicubic>(tile, take);
        case PixelFilter::Nearest:
            return readBy<PixelFilter::Nearest>(tile, take);
        }
    }

private:
    /// Above these pixels for one of the tile, copying costs more than it saves.
    static constexpr int kMostCopied = 16;

    template<PixelFilter filter, class Take> HWY_INLINE void readBy(const Tile& tile, const Take& take)
    {
        const int more = filter == PixelFilter::Bicubic ? 1 : 0;
        const Box box{tile.box.left - more, tile.box.top - more, tile.box.right + 1 + more,
                      tile.box.bottom + 1 + more};
        const std::int64_t area = std::int64_t(box.width()) * box.height();
        if (area > kMostCopied * tile.width * tile.height + 256)
            return readFar<filter>(tile, take);
        const auto spanOf = [&](int y) { return readSpan(tile, box, y, more); };
        if (m_image.channels == 4 && filter != PixelFilter::Bicubic && !tile.spans && isInside(box))
            return readPlanes<filter>(tile, box, take);
        if (m_image.channels == 4) {
            m_colours.fill(m_image, 0, m_reading.edges, box, spanOf);
            m_next.foresee(tile, box);
            return readColours<filter>(tile, box, spanOf, take);
        }
        for (int c = 0; c < m_image.channels; ++c) {
            // Whole rows: spans were measured to cost a single plane more than they save.
            m_window.fill(m_image, c, m_reading.edges, box);
            for (int row = 0; row < tile.height; ++row)
                readRow<filter>(tile, row, c, NearPixels(m_window, tile, row), take);
        }
    }

    /// What is read of row y, `more` being the pixels on either side of the two around a place.
    static HWY_INLINE Span readSpan(const Tile& tile, const Box& box, int y, int more)
    {
        if (!tile.spans)
            return {box.left, box.right};
        Span whole{box.right, box.left};
        const int last = std::min(y + more, tile.box.bottom - 1);
        for (int row = std::max(y - 1 - more, tile.box.top); row <= last; ++row) {
            const Span span = tile.spans[row - tile.box.top];
            whole.left = std::min(whole.left, tile.spansFrom + span.left - more);
            whole.right = std::max(whole.right, tile.spansFrom + span.right + 1 + more);
        }
        return whole;
    }

    template<PixelFilter filter, class Take> HWY_INLINE void readFar(const Tile& tile, const Take& take) const
    {
        for (int c = 0; c < m_image.channels; ++c)
            for (int row = 0; row < tile.height; ++row)
                readRow<filter>(tile, row, c, FarPixels(m_image, c, m_reading.edges, tile, row), take);
    }

    template<PixelFilter filter, class Pixels, class Take>
    static HWY_INLINE void readRow(const Tile& tile, int row, int channel, Pixels pixels, const Take& take)
    {
        for (int i = 0; i < tile.width; i += kLanes) {
            const F x = load(tile.placeX.data() + row * kTileWidth + i);
            const F y = load(tile.placeY.data() + row * kTileWidth + i);
            const F wholeX = floorOf(x), wholeY = floorOf(y);
            pixels.moveTo(wholeX, wholeY);
            take(channel, i, row, filteredOf<filter>(pixels, x - wholeX, y - wholeY));
        }
    }

    template<PixelFilter filter, class SpanOf, class Take>
    HWY_INLINE void readColours(const Tile& tile, const Box& box, const SpanOf& spanOf,
                                const Take& take) const
    {
        for (int row = 0; row < tile.height; ++row) {
            prefetchBeside(row, tile, box, spanOf);
            NearColours pixels(m_colours, tile, row);
            for (int i = 0; i < tile.width; i += kLanes) {
                const F x = load(tile.placeX.data() + row * kTileWidth + i);
                const F y = load(tile.placeY.data() + row * kTileWidth + i);
                const F wholeX = floorOf(x), wholeY = floorOf(y);
                pixels.moveTo(wholeX, wholeY);
                const Quad planes = planesOf(readPart<filter, 0>(pixels, x - wholeX, y - wholeY),
                                             readPart<filter, 1>(pixels, x - wholeX, y - wholeY),
                                             readPart<filter, 2>(pixels, x - wholeX, y - wholeY),
                                             readPart<filter, 3>(pixels, x - wholeX, y - wholeY));
                for (int c = 0; c < 4; ++c)
                    take(c, i, row, planes[c]);
            }
        }
    }

    template<class SpanOf>
    HWY_INLINE void prefetchBeside(int row, const Tile& tile, const Box& box, const SpanOf& spanOf) const
    {
        m_next.prefetch(m_image, m_reading.edges, box.top + box.height() * row / tile.height,
                        box.top + box.height() * (row + 1) / tile.height, spanOf);
    }

    /// Whether pixels can be read where they are, by numbers that floats hold.
    HWY_INLINE bool isInside(const Box& box) const
    {
        return box.left >= 0 && box.top >= 0 && box.right <= m_image.width && box.bottom <= m_image.height &&
               box.height() * m_image.stride < (1 << 24);
    }

    /// Copies would be made of more than the places need, so that gathering from four planes costs less.
    template<PixelFilter filter, class Take>
    HWY_INLINE void readPlanes(const Tile& tile, const Box& box, const Take& take)
    {
        m_next.foresee(tile, box);
        const std::ptrdiff_t corner = box.top * m_image.stride + box.left;
        for (int row = 0; row < tile.height; ++row) {
            prefetchBeside(row, tile, box, [&](int) { return Span{box.left, box.right}; });
            NearPixels pixels(box, static_cast<int>(m_image.stride), tile, row);
            for (int i = 0; i < tile.width; i += kLanes) {
                const F x = load(tile.placeX.data() + row * kTileWidth + i);
                const F y = load(tile.placeY.data() + row * kTileWidth + i);
                const F wholeX = floorOf(x), wholeY = floorOf(y);
                pixels.moveTo(wholeX, wholeY);
                for (int c = 0; c < 4; ++c) {
                    pixels.lookAt(m_image.planes[c] + corner);
                    take(c, i, row, filteredOf<filter>(pixels, x - wholeX, y - wholeY));
                }
            }
        }
    }

    template<PixelFilter filter, int part> static HWY_INLINE F readPart(NearColours& pixels, F x, F y)
    {
        pixels.choosePart(part);
        return filteredOf<filter>(pixels, NearColours::spread<part>(x), NearColours::spread<part>(y));
    }

    using Quad = std::array<F, 4>;

    /// Planes of colours that were read in four parts.
    static HWY_INLINE Quad planesOf(F a, F b, F c, F d)
    {
        const FloatTag tag;
        const hn::RepartitionToWide<WordTag> pairs;
        const auto ab = hn::BitCast(pairs, hn::InterleaveLower(tag, a.v, b.v));
        const auto cd = hn::BitCast(pairs, hn::InterleaveLower(tag, c.v, d.v));
        const auto abHigh = hn::BitCast(pairs, hn::InterleaveUpper(tag, a.v, b.v));
        const auto cdHigh = hn::BitCast(pairs, hn::InterleaveUpper(tag, c.v, d.v));
        return {hn::BitCast(tag, hn::InterleaveLower(pairs, ab, cd)),
                hn::BitCast(tag, hn::InterleaveUpper(pairs, ab, cd)),
                hn::BitCast(tag, hn::InterleaveLower(pairs, abHigh, cdHigh)),
                hn::BitCast(tag, hn::InterleaveUpper(pairs, abHigh, cdHigh))};
    }

    const ImageView& m_image;
    Reading m_reading;
    Window<1> m_window;
    Window<4> m_colours;
    NextBox m_next;
};

/// The distance from the nearest copy of what a distance is measured from, in a line that goes around.
HWY_INLINE F aroundOf(F distance, int size)
{
    const F whole(static_cast<float>(size));
    return distance - roundOf(distance / whole) * whole;
}

/// Writes a band of the result from an image of the result's size: each pixel from the place that is
/// move(tile, i, row) away from its own. begin(tile) is called before a tile.
template<class Begin, class Move>
HWY_INLINE void displace(const AreaJob& job, const ImageView& source, const Reading& reading,
                         const Begin& begin, const Move& move)
{
    TileReader reader(source, reading);
    const TileWriter writer(job.result);
    forEachTile(job, [&](Tile& tile) {
        begin(tile);
        tile.locate([&](int i, int row) {
            const Spot away = move(tile, i, row);
            return Spot{countFrom(static_cast<float>(i)) + away.x, away.y};
        });
        reader.read(tile, [&](int c, int i, int row, F value) { writer.put(tile, c, i, row, value); });
    });
}

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
