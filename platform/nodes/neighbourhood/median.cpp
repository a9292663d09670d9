#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

#include <algorithm>
#include <vector>

// Windows of up to 7 x 7 pixels are sorted out vector by vector, and what neighbours share is done once: each
// column is sorted, and neighbouring columns are merged in pairs (after A. Adams, "Fast median filters using
// separable sorting networks", 2021). Of what a window's pairs give together only the ranks count that the
// last column can make the median. Merging is K. Batcher's by odd and even places (1968).
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

/// Two ascending lists made one. Lists are taken by value of their places: `step` apart. What is not used of
/// the result costs nothing.
template<int countA, int countB, int step = 1> HWY_INLINE void merge(const F* a, const F* b, F* result)
{
    if constexpr (countA == 0 || countB == 0) {
        for (int i = 0; i < countA + countB; ++i)
            result[i] = countA == 0 ? b[i * step] : a[i * step];
    } else if constexpr (countA == 1 && countB == 1) {
        result[0] = minOf(a[0], b[0]);
        result[1] = maxOf(a[0], b[0]);
    } else {
        constexpr int kEven = (countA + 1) / 2 + (countB + 1) / 2, kOdd = countA / 2 + countB / 2;
        F even[kEven], odd[kOdd];
        merge<(countA + 1) / 2, (countB + 1) / 2, 2 * step>(a, b, even);
        merge<countA / 2, countB / 2, 2 * step>(a + step, b + step, odd);
        constexpr int kPairs = kEven - 1 < kOdd ? kEven - 1 : kOdd;
        result[0] = even[0];
        for (int i = 0; i < kPairs; ++i) {
            result[2 * i + 1] = minOf(odd[i], even[i + 1]);
            result[2 * i + 2] = maxOf(odd[i], even[i + 1]);
        }
        if constexpr (kEven != kOdd + 1)
            result[kEven + kOdd - 1] = kEven > kOdd ? even[kEven - 1] : odd[kOdd - 1];
    }
}

template<int count> HWY_INLINE void sort(F* values)
{
    if constexpr (count > 1) {
        constexpr int kHalf = count / 2;
        F sorted[count];
        sort<kHalf>(values);
        sort<count - kHalf>(values + kHalf);
        merge<kHalf, count - kHalf>(values, values + kHalf, sorted);
        for (int i = 0; i < count; ++i)
            values[i] = sorted[i];
    }
}

/// Windows of 3, 5 or 7 pixels square. Arrays begin at the first column that a chunk's windows reach.
template<int radius> class SmallMedian
{
public:
    SmallMedian(const ImageView& source, int channel) : m_source(source), m_channel(channel) {}

    void run(const MutableImage& result, int y0, int y1)
    {
        for (int x = 0; x < m_source.width; x += kChunk) {
            const int count = std::min(kChunk, m_source.width - x);
            for (int y = y0 - radius; y < y0 + radius; ++y)
                fill(x, y, count);
            for (int y = y0; y < y1; ++y) {
                fill(x, y + radius, count);
                sortColumns(count);
                mergePairs(count);
                medians(count, rowOf(result, m_channel, y) + x);
            }
        }
    }

private:
    static constexpr int kSide = 2 * radius + 1, kPair = 2 * kSide;
    using Line = float[kChunk + 3 * 16];

    void fill(int x, int y, int count) { m_rows[wrapped(y, kSide)].fill(m_source, m_channel, x, y, count); }

    void sortColumns(int count)
    {
        for (int i = 0; i < count + 2 * radius; i += kLanes) {
            F values[kSide];
            for (int k = 0; k < kSide; ++k)
                values[k] = loadAt(m_rows[k].at(i - radius));
            sort<kSide>(values);
            for (int k = 0; k < kSide; ++k)
                store(values[k], m_columns[k] + i);
        }
    }

    /// Each column with the next.
    void mergePairs(int count)
    {
        for (int i = 0; i < count + 2 * radius - 2; i += kLanes) {
            F left[kSide], right[kSide], both[kPair];
            for (int k = 0; k < kSide; ++k) {
                left[k] = load(m_columns[k] + i);
                right[k] = loadAt(m_columns[k] + i + 1);
            }
            merge<kSide, kSide>(left, right, both);
            for (int k = 0; k < kPair; ++k)
                store(both[k], m_pairs[k] + i);
        }
    }

    /// The first `pairs` of a window's pairs of columns, merged.
    template<int pairs> HWY_INLINE void gather(int i, F* values) const
    {
        F last[kPair];
        for (int k = 0; k < kPair; ++k)
            last[k] = loadAt(m_pairs[k] + i + 2 * (pairs - 1));
        if constexpr (pairs == 1) {
            std::copy_n(last, kPair, values);
        } else {
            F others[(pairs - 1) * kPair];
            gather<pairs - 1>(i, others);
            merge<(pairs - 1) * kPair, kPair>(others, last, values);
        }
    }

    void medians(int count, float* result) const
    {
        constexpr int kFirst = kSide * kSide / 2 - kSide; // the least rank that the last column can raise
        for (int i = 0; i < count; i += kLanes) {
            F values[radius * kPair];
            gather<radius>(i, values);
            F median = values[kFirst + kSide];
            for (int k = 0; k < kSide; ++k)
                median = minOf(median,
                               maxOf(values[kFirst + k], loadAt(m_columns[kSide - 1 - k] + i + 2 * radius)));
            store(median, result + i);
        }
    }

    const ImageView& m_source;
    int m_channel;
    RowWindow<radius> m_rows[kSide]; // in any order: they are sorted anyway
    alignas(64) Line m_columns[kSide], m_pairs[kPair];
};

void smallMedian(const MedianState& state, const AreaJob& job)
{
    for (int c = 0; c < job.result.channels; ++c) {
        if (state.radius == 1)
            SmallMedian<1>(job.operands[0], c).run(job.result, job.y0, job.y1);
        else if (state.radius == 2)
            SmallMedian<2>(job.operands[0], c).run(job.result, job.y0, job.y1);
        else
            SmallMedian<3>(job.operands[0], c).run(job.result, job.y0, job.y1);
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
    if (state.radius > 3)
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
