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

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
