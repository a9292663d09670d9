// Reading a picture at places that vary from pixel to pixel, for the instruction set that is being compiled.
//
// The result is worked through in tiles. The places of a tile are written down first. The part of the picture
// that they cover is then copied, channel by channel, with what stands beyond the edges, so that the reads
// need no care and stay in the first cache whichever way they run; neighbours in a row come with one read.
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

#include "platform/nodes/resampling.h"
#include "platform/nodes/simd.h"

#include <algorithm>
#include <cmath>

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {

constexpr int kTileWidth = 64, kTileHeight = 32;

/// Distances right and down, in pixels.
struct Spot
{
    F x, y;
};

/// Places of the pixels of a tile: rows y to y + height - 1, columns x to x + width - 1 of the result, and up
/// to a whole vector beyond.
struct Tile
{
    int x = 0, y = 0, width = 0, height = 0;
    std::array<int, kTileHeight> anchorX{}, anchorY{};
    alignas(64) std::array<float, kTileWidth * kTileHeight> placeX, placeY;
    Box box; // of the pixels that the places lie in

    /// Takes the places from place(i, row): those of columns x + i on, from the anchors.
    template<class Place> HWY_INLINE void locate(const Place& place)
    {
        box = {1 << 30, 1 << 30, -(1 << 30), -(1 << 30)};
        for (int row = 0; row < height; ++row) {
            F lowX(kFurthest), highX(-kFurthest), lowY(kFurthest), highY(-kFurthest);
            for (int i = 0; i < width; i += kLanes) {
                const Spot spot = place(i, row);
                // No number fails the comparison, like what is too far away to be told apart from its like.
                const F dx = choose(absOf(spot.x) < F(kFurthest), spot.x, F(0.0f));
                const F dy = choose(absOf(spot.y) < F(kFurthest), spot.y, F(0.0f));
                store(dx, placeX.data() + row * kTileWidth + i);
                store(dy, placeY.data() + row * kTileWidth + i);
                lowX = minOf(lowX, dx);
                highX = maxOf(highX, dx);
                lowY = minOf(lowY, dy);
                highY = maxOf(highY, dy);
            }
            box.left = std::min(box.left, anchorX[row] + lowestOf(lowX));
            box.right = std::max(box.right, anchorX[row] - lowestOf(-highX) + 1);
            box.top = std::min(box.top, anchorY[row] + lowestOf(lowY));
            box.bottom = std::max(box.bottom, anchorY[row] - lowestOf(-highY) + 1);
        }
    }

private:
    static constexpr float kFurthest = 4194304.0f;

    static HWY_INLINE int lowestOf(F a)
    {
        const FloatTag tag;
        return static_cast<int>(std::floor(hn::GetLane(hn::MinOfLanes(tag, a.v))));
    }
};

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

struct Pair
{
    F first, second; // neighbours in a row
};

/// Pixels of a window, by the distance from a place's own.
class NearPixels
{
public:
    NearPixels(const Window<1>& window, const Tile& tile, int row)
        : m_pixels(window.at(window.box().left, window.box().top)), m_stride(window.stride()),
          m_left(static_cast<float>(tile.anchorX[row] - window.box().left)),
          m_top(static_cast<float>(tile.anchorY[row] - window.box().top))
    {
    }

    HWY_INLINE void moveTo(F wholeX, F wholeY)
    {
        // All numbers are whole and below 2^24, so they are exact.
        const F x = wholeX + F(m_left), y = wholeY + F(m_top);
        m_index = hn::ConvertTo(IntegerTag(), (y * F(static_cast<float>(m_stride)) + x).v);
    }

    HWY_INLINE Pair pair(int x, int y) const
    {
        const float* from = m_pixels + y * m_stride + x;
        const hn::RepartitionToWide<IntegerTag> wide;
        const hn::RepartitionToWide<WordTag> pairs;
        const hn::Half<IntegerTag> half;
        const auto low = hn::ShiftLeft<2>(hn::PromoteTo(wide, hn::LowerHalf(half, m_index)));
        const auto high = hn::ShiftLeft<2>(hn::PromoteTo(wide, hn::UpperHalf(half, m_index)));
        const auto* base = reinterpret_cast<const std::uint64_t*>(from);
        const FloatTag tag;
        const auto lower = hn::BitCast(tag, hn::GatherOffset(pairs, base, low));
        const auto upper = hn::BitCast(tag, hn::GatherOffset(pairs, base, high));
        return {hn::ConcatEven(tag, upper, lower), hn::ConcatOdd(tag, upper, lower)};
    }

private:
    const float* m_pixels;
    int m_stride;
    float m_left, m_top; // from the window's corner to the anchor
    hn::Vec<IntegerTag> m_index;
};

/// Colours of a window, by the distance from a place's own. A vector has whole colours of kLanes / 4 pixels.
class NearColours
{
public:
    static constexpr int kPixels = kLanes / 4;

    NearColours(const Window<4>& window, const Tile& tile, int row)
        : m_pixels(window.at(window.box().left, window.box().top)), m_stride(window.stride()),
          m_left(static_cast<float>(tile.anchorX[row] - window.box().left)),
          m_top(static_cast<float>(tile.anchorY[row] - window.box().top))
    {
    }

    HWY_INLINE void moveTo(F wholeX, F wholeY)
    {
        const F x = wholeX + F(m_left), y = wholeY + F(m_top);
        hn::Store(hn::ConvertTo(IntegerTag(), (y * F(static_cast<float>(m_stride)) + x).v), IntegerTag(),
                  m_index.data());
    }

    /// Which kPixels of the kLanes places are read.
    HWY_INLINE void choosePart(int part) { m_part = part * kPixels; }

    /// The chosen places' numbers, each for all four channels.
    static HWY_INLINE F spread(F numbers, int part)
    {
        const FloatTag tag;
        const IntegerTag integers;
        const auto lanes =
            hn::Add(hn::ShiftRight<2>(hn::Iota(integers, 0)), hn::Set(integers, part * kPixels));
        return hn::TableLookupLanes(numbers.v, hn::IndicesFromVec(tag, lanes));
    }

    HWY_INLINE Pair pair(int x, int y) const
    {
        const float* from = m_pixels + 4 * (y * m_stride + x);
        return {coloursAt<kLanes>(from), coloursAt<kLanes>(from + 4)};
    }

private:
    template<int lanes> HWY_INLINE F coloursAt(const float* from) const
    {
        const hn::FixedTag<float, 4> one;
        const auto colour = [&](int k) {
            return hn::LoadU(one, from + 4 * static_cast<std::ptrdiff_t>(m_index[m_part + k]));
        };
        if constexpr (lanes == 4) {
            return colour(0);
        } else if constexpr (lanes == 8) {
            return hn::Combine(FloatTag(), colour(1), colour(0));
        } else {
            const hn::Half<FloatTag> half;
            return hn::Combine(FloatTag(), hn::Combine(half, colour(3), colour(2)),
                               hn::Combine(half, colour(1), colour(0)));
        }
    }

    const float* m_pixels;
    int m_stride, m_part = 0;
    float m_left, m_top; // from the window's corner to the anchor
    alignas(64) std::array<std::int32_t, kLanes> m_index;
};

/// Pixels of a whole picture, by the distance from a place's own.
class FarPixels
{
public:
    FarPixels(const ImageView& image, int channel, Edges edges, const Tile& tile, int row)
        : m_plane(image.planes[channel]), m_stride(static_cast<std::uint32_t>(image.stride)), m_edges(edges),
          m_width(static_cast<float>(image.width)), m_height(static_cast<float>(image.height)),
          m_anchorX(static_cast<float>(tile.anchorX[row])), m_anchorY(static_cast<float>(tile.anchorY[row]))
    {
    }

    HWY_INLINE void moveTo(F wholeX, F wholeY)
    {
        m_x = wholeX + F(m_anchorX);
        m_y = wholeY + F(m_anchorY);
    }

    HWY_INLINE Pair pair(int x, int y) const
    {
        const F row = standInOf(m_y + F(static_cast<float>(y)), m_height);
        return {pixel(m_x + F(static_cast<float>(x)), row), pixel(m_x + F(static_cast<float>(x + 1)), row)};
    }

private:
    /// Like standIn() of one number.
    HWY_INLINE F standInOf(F x, float size) const
    {
        if (m_edges == Edges::None)
            return choose((x >= F(0.0f)) & (x < F(size)), x, F(-1.0f));
        if (m_edges == Edges::Repeat)
            return turnedOf(x, size);
        const F turned = turnedOf(x, 2.0f * size);
        return minOf(turned, F(2.0f * size - 1.0f) - turned);
    }

    /// x modulo size; x is whole and below 2^23.
    static HWY_INLINE F turnedOf(F x, float size)
    {
        const F rest = x - floorOf(x * F(1.0f / size)) * F(size);
        const F raised = choose(rest < F(0.0f), rest + F(size), rest);
        return choose(raised >= F(size), raised - F(size), raised);
    }

    HWY_INLINE F pixel(F x, F row) const
    {
        const F column = standInOf(x, m_width);
        const F inside = minOf(column, row);
        const U index = toInteger(maxOf(row, F(0.0f))) * U(m_stride) + toInteger(maxOf(column, F(0.0f)));
        return choose(inside < F(0.0f), F(0.0f), gather(m_plane, index));
    }

    const float* m_plane;
    std::uint32_t m_stride;
    Edges m_edges;
    float m_width, m_height, m_anchorX, m_anchorY;
    F m_x, m_y;
};

template<class Pixels> HWY_INLINE F bilinearOf(const Pixels& pixels, F x, F y)
{
    const Pair upper = pixels.pair(0, 0), lower = pixels.pair(0, 1);
    return lerpOf(lerpOf(upper.first, upper.second, x), lerpOf(lower.first, lower.second, x), y);
}

/// Weights of four neighbours, the place lying at t between the second and the third (E. Catmull, R. Rom).
struct CubicWeights
{
    F w[4];
    HWY_INLINE explicit CubicWeights(F t)
    {
        const F half(0.5f), t2 = t * t, t3 = t2 * t;
        w[0] = (t2 + t2 - t3 - t) * half;
        w[1] = (F(3.0f) * t3 - F(5.0f) * t2 + F(2.0f)) * half;
        w[2] = (F(4.0f) * t2 - F(3.0f) * t3 + t) * half;
        w[3] = (t3 - t2) * half;
    }
};

template<class Pixels> HWY_INLINE F bicubicOf(const Pixels& pixels, F x, F y)
{
    const CubicWeights across(x), down(y);
    F sum(0.0f);
    for (int row = 0; row < 4; ++row) {
        const Pair left = pixels.pair(-1, row - 1), right = pixels.pair(1, row - 1);
        const F value = (left.first * across.w[0] + left.second * across.w[1]) +
                        (right.first * across.w[2] + right.second * across.w[3]);
        sum += value * down.w[row];
    }
    return sum;
}

template<class Pixels> HWY_INLINE F nearestOf(const Pixels& pixels, F x, F y)
{
    const Pair upper = pixels.pair(0, 0), lower = pixels.pair(0, 1);
    const M right = x >= F(0.5f), below = y >= F(0.5f);
    return choose(below, choose(right, lower.second, lower.first), choose(right, upper.second, upper.first));
}

template<PixelFilter filter, class Pixels> HWY_INLINE F filteredOf(const Pixels& pixels, F x, F y)
{
    if constexpr (filter == PixelFilter::Bicubic)
        return bicubicOf(pixels, x, y);
    else if constexpr (filter == PixelFilter::Nearest)
        return nearestOf(pixels, x, y);
    else
        return bilinearOf(pixels, x, y);
}

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
        if (m_image.channels == 4)
            return readColours<filter>(tile, box, take);
        for (int c = 0; c < m_image.channels; ++c) {
            m_window.fill(m_image, c, m_reading.edges, box);
            for (int row = 0; row < tile.height; ++row)
                readRow<filter>(tile, row, c, NearPixels(m_window, tile, row), take);
        }
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

    template<PixelFilter filter, class Take>
    HWY_INLINE void readColours(const Tile& tile, const Box& box, const Take& take)
    {
        m_colours.fill(m_image, 0, m_reading.edges, box);
        alignas(64) std::array<float, 4 * kLanes> colours;
        for (int row = 0; row < tile.height; ++row) {
            NearColours pixels(m_colours, tile, row);
            for (int i = 0; i < tile.width; i += kLanes) {
                const F x = load(tile.placeX.data() + row * kTileWidth + i);
                const F y = load(tile.placeY.data() + row * kTileWidth + i);
                const F wholeX = floorOf(x), wholeY = floorOf(y);
                pixels.moveTo(wholeX, wholeY);
                for (int part = 0; part < 4; ++part) {
                    pixels.choosePart(part);
                    store(filteredOf<filter>(pixels, NearColours::spread(x - wholeX, part),
                                             NearColours::spread(y - wholeY, part)),
                          colours.data() + part * kLanes);
                }
                F planes[4];
                hn::LoadInterleaved4(FloatTag(), colours.data(), planes[0].v, planes[1].v, planes[2].v,
                                     planes[3].v);
                for (int c = 0; c < 4; ++c)
                    take(c, i, row, planes[c]);
            }
        }
    }

    const ImageView& m_image;
    Reading m_reading;
    Window<1> m_window;
    Window<4> m_colours;
};

/// The distance from the nearest copy of what a distance is measured from, in a line that goes around.
HWY_INLINE F aroundOf(F distance, int size)
{
    const F whole(static_cast<float>(size));
    return distance - roundOf(distance / whole) * whole;
}

/// Calls work(tile) for the tiles of a band, anchored at their own pixels. Columns of tiles start at the same
/// places in every band.
template<class Work> HWY_INLINE void forEachTile(const AreaJob& job, const Work& work)
{
    Tile tile;
    for (tile.y = job.y0; tile.y < job.y1; tile.y += tile.height) {
        tile.height = std::min(kTileHeight, job.y1 - tile.y);
        for (tile.x = 0; tile.x < job.result.width; tile.x += kTileWidth) {
            tile.width = std::min(kTileWidth, job.result.width - tile.x);
            for (int row = 0; row < tile.height; ++row) {
                tile.anchorX[row] = tile.x;
                tile.anchorY[row] = tile.y + row;
            }
            work(tile);
        }
    }
}

/// Writes a band of the result from an image of the result's size: each pixel from the place that is
/// move(tile, i, row) away from its own. begin(tile) is called before a tile.
template<class Begin, class Move>
HWY_INLINE void displace(const AreaJob& job, const ImageView& source, const Reading& reading,
                         const Begin& begin, const Move& move)
{
    TileReader reader(source, reading);
    forEachTile(job, [&](Tile& tile) {
        begin(tile);
        tile.locate([&](int i, int row) {
            const Spot away = move(tile, i, row);
            return Spot{countFrom(static_cast<float>(i)) + away.x, away.y};
        });
        reader.read(tile, [&](int c, int i, int row, F value) {
            store(value, rowOf(job.result, c, tile.y + row) + tile.x + i);
        });
    });
}

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
