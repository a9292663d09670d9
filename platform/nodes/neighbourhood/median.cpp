#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

#include <algorithm>
#include <vector>

// Windows of up to 5 x 5 pixels are sorted out vector by vector: of half the values and one more neither the
// least nor the greatest can be the median; both go, the next value comes in, until one is left.
//
// Larger windows slide over tiles whose pixels are numbered by their order first. A set of the numbers in the
// window, counted in words of 64, follows the median as pixels come and go (after T. Huang, 1979).

#ifndef VELLOR_MEDIAN_STATE
#define VELLOR_MEDIAN_STATE
namespace vellor::nodes {
namespace {

constexpr int kMostRadius = 16;
constexpr int kTile = 64; // pixels of a tile across

struct MedianState : State
{
    int radius = 1;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/neighbourhood/median.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

HWY_INLINE void order(F& low, F& high)
{
    const F least = minOf(low, high);
    high = maxOf(low, high);
    low = least;
}

template<int radius> void smallMedianRow(const ImageView& source, int channel, int y, float* result)
{
    constexpr int kSide = 2 * radius + 1, kCount = kSide * kSide, kHeld = kCount / 2 + 2;
    RowWindow<radius> rows[kSide];
    for (int x = 0; x < source.width; x += kChunk) {
        const int count = std::min(kChunk, source.width - x);
        for (int r = 0; r < kSide; ++r)
            rows[r].fill(source, channel, x, y + r - radius, count);
        for (int i = 0; i < count; i += kLanes) {
            const auto value = [&](int k) { return loadAt(rows[k / kSide].at(i + k % kSide - radius)); };
            F held[kHeld];
            for (int k = 0; k < kHeld; ++k)
                held[k] = value(k);
            for (int first = 0, next = kHeld;; ++first) {
                for (int k = first + 1; k < kHeld; ++k)
                    order(held[first], held[k]);
                for (int k = first + 1; k < kHeld - 1; ++k)
                    order(held[k], held[kHeld - 1]);
                if (next == kCount)
                    break;
                held[kHeld - 1] = value(next++);
            }
            store(held[kHeld - 2], result + x + i);
        }
    }
}

void smallMedian(const MedianState& state, const AreaJob& job)
{
    for (int c = 0; c < job.result.channels; ++c)
        for (int y = job.y0; y < job.y1; ++y) {
            if (state.radius == 1)
                smallMedianRow<1>(job.operands[0], c, y, rowOf(job.result, c, y));
            else
                smallMedianRow<2>(job.operands[0], c, y, rowOf(job.result, c, y));
        }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

HWY_EXPORT(smallMedian);

namespace {

/// The order of the bits of floats as unsigned numbers: that of their values.
std::uint32_t orderedBits(float value)
{
    const std::uint32_t bits = scalar::bitsOf(value);
    return bits & 0x80000000u ? ~bits : bits | 0x80000000u;
}

/// A set of numbers with a place between its members that can be moved to any of them by order.
class OrderedSet
{
public:
    explicit OrderedSet(std::size_t size) : m_words((size + 63) / 64, 0) {}

    void clear()
    {
        std::fill(m_words.begin(), m_words.end(), 0);
        m_word = m_below = 0;
    }
    void insert(std::uint32_t number) { change(number, 1); }
    void remove(std::uint32_t number) { change(number, -1); }

    /// The member that has `rank` smaller ones; there must be one.
    std::uint32_t at(int rank)
    {
        while (m_below > rank)
            m_below -= __builtin_popcountll(m_words[--m_word]);
        int here;
        while (m_below + (here = __builtin_popcountll(m_words[m_word])) <= rank) {
            m_below += here;
            ++m_word;
        }
        std::uint64_t bits = m_words[m_word];
        for (int left = rank - m_below; left > 0; --left)
            bits &= bits - 1;
        return static_cast<std::uint32_t>(64 * m_word + __builtin_ctzll(bits));
    }

private:
    void change(std::uint32_t number, int by)
    {
        m_words[number / 64] ^= std::uint64_t(1) << number % 64;
        if (static_cast<int>(number / 64) < m_word)
            m_below += by;
    }

    std::vector<std::uint64_t> m_words;
    int m_word = 0, m_below = 0; // the word of the last answer, and the members before it
};

/// The pixels of a tile and its surroundings by their order.
class NumberedTile
{
public:
    void fill(const ImageView& source, int channel, int x, int y, int width, int height)
    {
        m_width = width;
        m_pixels.resize(static_cast<std::size_t>(width) * height);
        for (int row = 0; row < height; ++row)
            copyWrapped(rowOf(source, channel, y + row), source.width, x, width,
                        m_pixels.data() + row * width);
        m_order.resize(m_pixels.size());
        m_numbers.resize(m_pixels.size());
        for (std::size_t i = 0; i < m_pixels.size(); ++i)
            m_order[i] = std::uint64_t(orderedBits(m_pixels[i])) << 32 | i;
        std::sort(m_order.begin(), m_order.end());
        for (std::size_t i = 0; i < m_order.size(); ++i)
            m_numbers[static_cast<std::uint32_t>(m_order[i])] = static_cast<std::uint32_t>(i);
    }

    std::size_t size() const { return m_pixels.size(); }
    std::uint32_t number(int x, int y) const { return m_numbers[y * m_width + x]; }
    float pixel(std::uint32_t number) const { return m_pixels[static_cast<std::uint32_t>(m_order[number])]; }

private:
    int m_width = 0;
    std::vector<float> m_pixels;
    std::vector<std::uint64_t> m_order; // bits of the value, place in the tile
    std::vector<std::uint32_t> m_numbers;
};

void slideRow(const NumberedTile& tile, OrderedSet& set, int radius, int row, int count, float* result)
{
    const int side = 2 * radius + 1, rank = side * side / 2;
    set.clear();
    for (int x = 0; x < side - 1; ++x)
        for (int y = 0; y < side; ++y)
            set.insert(tile.number(x, row + y));
    for (int x = 0; x < count; ++x) {
        for (int y = 0; y < side; ++y)
            set.insert(tile.number(x + side - 1, row + y));
        result[x] = tile.pixel(set.at(rank));
        for (int y = 0; y < side; ++y)
            set.remove(tile.number(x, row + y));
    }
}

void largeMedian(const MedianState& state, const AreaJob& job)
{
    const int radius = state.radius;
    NumberedTile tile;
    for (int c = 0; c < job.result.channels; ++c) {
        for (int y = job.y0; y < job.y1; y += kTile) {
            const int rows = std::min(kTile, job.y1 - y);
            for (int x = 0; x < job.result.width && !job.stopped(); x += kTile) {
                const int count = std::min(kTile, job.result.width - x);
                tile.fill(job.operands[0], c, x - radius, y - radius, count + 2 * radius, rows + 2 * radius);
                OrderedSet set(tile.size());
                for (int row = 0; row < rows; ++row)
                    slideRow(tile, set, radius, row, count, rowOf(job.result, c, y + row) + x);
            }
        }
    }
}

void medianArea(const AreaJob& job)
{
    const auto& state = static_cast<const MedianState&>(*job.state);
    if (state.radius > 2)
        return largeMedian(state, job);
    if (state.radius > 0)
        return HWY_DYNAMIC_DISPATCH(smallMedian)(state, job);
    for (int c = 0; c < job.result.channels; ++c)
        for (int y = job.y0; y < job.y1; ++y)
            std::copy_n(rowOf(job.operands[0], c, y), job.result.width, rowOf(job.result, c, y));
}

std::unique_ptr<State> prepareMedian(const Setup& setup)
{
    auto state = std::make_unique<MedianState>();
    state->radius = held(setup.parameters[0].i[0], 0, kMostRadius);
    return state;
}

} // namespace

const NodeDeclaration medianNode{"median",
                                 "Median",
                                 "Neighbourhood",
                                 "The median of each channel over a square around each pixel: takes out "
                                 "specks, keeps edges. Wraps around.",
                                 ResultChannels::FromOperands,
                                 Chance::None,
                                 {{"input", OperandChannels::Result, true, "The picture."}},
                                 {{"radius",
                                   ParameterType::Int,
                                   {2},
                                   0,
                                   16,
                                   "How far the square reaches beyond the pixel in its middle, in pixels."}},
                                 prepareMedian,
                                 nullptr,
                                 medianArea};

} // namespace vellor::nodes
#endif
