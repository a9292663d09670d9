// Pixels near the places of a vector, from copies or from the picture itself, for the instruction set that is
// being compiled.

#if defined(VELLOR_NODES_PIXELS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLOR_NODES_PIXELS_INL_H
#undef VELLOR_NODES_PIXELS_INL_H
#else
#define VELLOR_NODES_PIXELS_INL_H
#endif

#include "platform/nodes/tile-inl.h"
#include "platform/nodes/window-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {

struct Pair
{
    F first, second; // neighbours in a row
};

/// Pixels of a window, or of a part of a picture that nothing goes around the edges of, by the distance from
/// a place's own.
class NearPixels
{
public:
    NearPixels(const Window<1>& window, const Tile& tile, int row)
        : NearPixels(window.box(), window.stride(), tile, row)
    {
        lookAt(window.at(window.box().left, window.box().top));
    }
    /// lookAt() comes before reading. The box's height times stride is below 2^24.
    NearPixels(const Box& box, int stride, const Tile& tile, int row)
        : m_stride(stride), m_left(static_cast<float>(tile.anchorX[row] - box.left)),
          m_top(static_cast<float>(tile.anchorY[row] - box.top))
    {
    }

    /// The pixel in the box's corner: of another channel, places stay.
    HWY_INLINE void lookAt(const float* corner) { m_pixels = corner; }

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
    const float* m_pixels = nullptr;
    int m_stride;
    float m_left, m_top; // from the box's corner to the anchor
    hn::Vec<IntegerTag> m_index;
};

/// Colours of a window, by the distance from a place's own. The places of a vector are read in four parts; a
/// part is the colours of places part, part + 4, part + 8 and so on.
class NearColours
{
public:
    NearColours(const Window<4>& window, const Tile& tile, int row)
        : m_pixels(window.at(window.box().left, window.box().top)), m_stride(window.stride()),
          m_left(static_cast<float>(tile.anchorX[row] - window.box().left)),
          m_top(static_cast<float>(tile.anchorY[row] - window.box().top))
    {
    }

    HWY_INLINE void moveTo(F wholeX, F wholeY)
    {
        const F x = wholeX + F(m_left), y = wholeY + F(m_top);
        const auto index = hn::ConvertTo(IntegerTag(), (y * F(static_cast<float>(m_stride)) + x).v);
        hn::Store(hn::ShiftLeft<2>(index), IntegerTag(), m_offset.data());
    }

    HWY_INLINE void choosePart(int part) { m_part = part; }

    /// The places' numbers, each for the four channels of a part's colour.
    template<int part> static HWY_INLINE F spread(F numbers) { return hn::Broadcast<part>(numbers.v); }

    HWY_INLINE Pair pair(int x, int y) const
    {
        const float* from = m_pixels + 4 * (y * m_stride + x);
        return {coloursAt<kLanes>(from), coloursAt<kLanes>(from + 4)};
    }

    /// Between the rows of the places and the ones below, y lying as in spread().
    HWY_INLINE Pair pairBetweenRows(F y) const { return pairBetween<kLanes>(y); }

private:
    HWY_INLINE std::ptrdiff_t offsetOf(int k) const { return m_offset[4 * k + m_part]; }

    template<int lanes> HWY_INLINE F coloursAt(const float* from) const
    {
        const hn::FixedTag<float, 4> one;
        const auto colour = [&](int k) { return hn::LoadU(one, from + offsetOf(k)); };
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

    template<int lanes> HWY_INLINE Pair pairBetween(F y) const
    {
        if constexpr (lanes == 4) {
            const Pair upper = pair(0, 0), lower = pair(0, 1);
            return {lerpOf(upper.first, lower.first, y), lerpOf(upper.second, lower.second, y)};
        } else {
            // Neighbours in a row come with one read and are sorted afterwards.
            const auto other = hn::SwapAdjacentBlocks(y.v);
            const auto even = neighboursBetween<lanes>(0, hn::OddEvenBlocks(other, y.v)).v;
            const auto odd = neighboursBetween<lanes>(1, hn::OddEvenBlocks(y.v, other)).v;
            return {hn::OddEvenBlocks(hn::SwapAdjacentBlocks(odd), even),
                    hn::OddEvenBlocks(odd, hn::SwapAdjacentBlocks(even))};
        }
    }

    /// Between the rows, both neighbours of the part's even or odd places.
    template<int lanes> HWY_INLINE F neighboursBetween(int odd, F y) const
    {
        return lerpOf(neighboursAt<lanes>(m_pixels, odd), neighboursAt<lanes>(m_pixels + 4 * m_stride, odd),
                      y);
    }

    template<int lanes> HWY_INLINE F neighboursAt(const float* from, int odd) const
    {
        const hn::FixedTag<float, 8 + 0 * lanes> two;
        if constexpr (lanes == 8)
            return hn::LoadU(two, from + offsetOf(odd));
        else
            return hn::Combine(FloatTag(), hn::LoadU(two, from + offsetOf(odd + 2)),
                               hn::LoadU(two, from + offsetOf(odd)));
    }

    const float* m_pixels;
    int m_stride, m_part = 0;
    float m_left, m_top; // from the window's corner to the anchor
    alignas(64) std::array<std::int32_t, kLanes> m_offset;
};

template<class Pixels> HWY_INLINE Pair pairBetweenRows(const Pixels& pixels, F y)
{
    const Pair upper = pixels.pair(0, 0), lower = pixels.pair(0, 1);
    return {lerpOf(upper.first, lower.first, y), lerpOf(upper.second, lower.second, y)};
}
HWY_INLINE Pair pairBetweenRows(const NearColours& pixels, F y)
{
    return pixels.pairBetweenRows(y);
}

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

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
