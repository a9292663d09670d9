#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/neighbourhood/largemedian.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"

#include <algorithm>

// Windows of up to 7 x 7 pixels are sorted out vector by vector, and what neighbours share is done once, for
// two rows together: each column is sorted, and neighbouring columns are merged in pairs (after A. Adams,
// "Fast median filters using separable sorting networks", 2021). Of what the rows' windows have in common
// only the ranks count that the pixels of one row alone can make the median. Merging is K. Batcher's by odd
// and even places (1968). Of 3 x 3 pixels only the columns need sorting. Larger windows: largemedian.h.

#ifndef VELLOR_MEDIAN_STATE
#define VELLOR_MEDIAN_STATE
namespace vellor::nodes {
namespace {

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

#include <hwy/cache_control.h>

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

/// A part of two rows with the rows around them, as far as windows reach.
template<int radius> class Surroundings
{
public:
    static constexpr int kRows = 2 * radius + 2;

    void lookAt(const ImageView& source, int channel, int x, int y, int count)
    {
        const bool inside =
            x >= radius && x + count + radius <= source.width && x + count + radius + kLanes <= source.stride;
        for (int k = 0; k < kRows; ++k) {
            if (!inside)
                m_copies[k].fill(source, channel, x, y + k - radius, count);
            m_rows[k] = inside ? rowOf(source, channel, y + k - radius) + x : m_copies[k].at(0);
        }
        for (int k = 0; k < 2; ++k)
            m_next[k] = rowOf(source, channel, y + k + radius + 2) + x;
    }

    /// Fetches what the next rows take beyond what these do: where memory is the limit, waiting for it was a
    /// third of the time.
    HWY_INLINE void fetchNext(int x) const
    {
        for (const float* row : m_next)
            __builtin_prefetch(row + x);
    }
    /// Pixels of the k-th row, from pixel x of the part on.
    HWY_INLINE F pixels(int k, int x) const { return loadAt(m_rows[k] + x); }

private:
    const float* m_rows[kRows];
    const float* m_next[2];
    RowWindow<radius> m_copies[kRows]; // where rows end
};

HWY_INLINE F middleOf(F a, F b, F c)
{
    return maxOf(minOf(a, b), minOf(maxOf(a, b), c));
}

/// Windows of 3 pixels square: the middle of the greatest of the columns' least pixels, the middle of their
/// middle ones, and the least of their greatest ones.
class LeastMedian
{
public:
    static constexpr int kRadius = 1;

    template<class Put> HWY_INLINE void run(const Surroundings<1>& source, int count, const Put& put)
    {
        for (int x = 0; x < count; x += kLanes) {
            source.fetchNext(x);
            F common[3][2];
            for (int k = 0; k < 3; ++k) {
                for (int row = 0; row < 2; ++row)
                    common[k][row] = source.pixels(row + 1, x + k - 1);
                sort<2>(common[k]);
            }
            for (int row = 0; row < 2; ++row)
                put(row, x, median(source, 3 * row, x, common));
        }
    }

private:
    /// Of two rows and a third.
    static HWY_INLINE F median(const Surroundings<1>& source, int row, int x, const F (*common)[2])
    {
        F columns[3][3];
        for (int k = 0; k < 3; ++k) {
            const F other = source.pixels(row, x + k - 1);
            merge<1, 2>(&other, common[k], columns[k]);
        }
        return middleOf(maxOf(maxOf(columns[0][0], columns[1][0]), columns[2][0]),
                        middleOf(columns[0][1], columns[1][1], columns[2][1]),
                        minOf(minOf(columns[0][2], columns[1][2]), columns[2][2]));
    }
};

/// Windows of 5 or 7 pixels square. Arrays begin at the first column that a chunk's windows reach.
template<int radius> class SmallMedian
{
public:
    static constexpr int kRadius = radius;

    template<class Put> HWY_INLINE void run(const Surroundings<radius>& source, int count, const Put& put)
    {
        sortColumns(source, count);
        mergePairs(count);
        medians(source, count, put);
    }

private:
    static constexpr int kSide = 2 * radius + 1, kColumn = 2 * radius, kPair = 2 * kColumn;
    using Line = float[kChunk + 3 * 16];

    /// What both rows' windows have of each column.
    void sortColumns(const Surroundings<radius>& source, int count)
    {
        for (int i = 0; i < count + 2 * radius; i += kLanes) {
            source.fetchNext(i);
            F values[kColumn];
            for (int k = 0; k < kColumn; ++k)
                values[k] = source.pixels(k + 1, i - radius);
            sort<kColumn>(values);
            for (int k = 0; k < kColumn; ++k)
                store(values[k], m_columns[k] + i);
        }
    }

    /// Each column with the next.
    void mergePairs(int count)
    {
        for (int i = 0; i < count + 2 * radius - 2; i += kLanes) {
            F left[kColumn], right[kColumn], both[kPair];
            for (int k = 0; k < kColumn; ++k) {
                left[k] = load(m_columns[k] + i);
                right[k] = loadAt(m_columns[k] + i + 1);
            }
            merge<kColumn, kColumn>(left, right, both);
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

    template<class Put>
    HWY_INLINE void medians(const Surroundings<radius>& source, int count, const Put& put) const
    {
        constexpr int kFirst = kSide * kSide / 2 - kSide; // the least rank that the other pixels can raise
        for (int i = 0; i < count; i += kLanes) {
            F paired[radius * kPair], last[kColumn], values[radius * kPair + kColumn];
            gather<radius>(i, paired);
            for (int k = 0; k < kColumn; ++k)
                last[k] = loadAt(m_columns[k] + i + 2 * radius);
            merge<radius * kPair, kColumn>(paired, last, values);
            for (int row = 0; row < 2; ++row) {
                F others[kSide]; // what the row's window has alone: its upper or its lower pixels
                for (int k = 0; k < kSide; ++k)
                    others[k] = source.pixels(row * kSide, i + k - radius);
                sort<kSide>(others);
                F median = values[kFirst + kSide];
                for (int k = 0; k < kSide; ++k)
                    median = minOf(median, maxOf(values[kFirst + k], others[kSide - 1 - k]));
                put(row, i, median);
            }
        }
    }

    alignas(64) Line m_columns[kColumn], m_pairs[kPair];
};

/// Two rows at a time, the first of them even wherever the band begins: of zeros of either sign, which one is
/// found depends on the order of comparisons. From left to right, so that the processor sees pixels coming.
template<class Median> void runMedian(const AreaJob& job)
{
    Median median;
    Surroundings<Median::kRadius> surroundings;
    const bool past = goesPastCaches(job.result);
    const auto wanted = [&](int y) { return y >= job.y0 && y < job.y1; };
    for (int c = 0; c < job.result.channels; ++c) {
        for (int y = job.y0 / 2 * 2; y < job.y1 && !job.stopped(); y += 2) {
            for (int x = 0; x < job.result.width; x += kChunk) {
                const int count = std::min(kChunk, job.result.width - x);
                float* first = rowOf(job.result, c, y) + x;
                surroundings.lookAt(job.operands[0], c, x, y, count);
                if (past && wanted(y) && wanted(y + 1))
                    median.run(surroundings, count, [&](int row, int i, F value) {
                        hn::Stream(value.v, FloatTag(), first + row * job.result.stride + i);
                    });
                else
                    median.run(surroundings, count, [&](int row, int i, F value) {
                        if (wanted(y + row))
                            store(value, first + row * job.result.stride + i);
                    });
            }
        }
    }
    if (past)
        hwy::FlushStream(); // before other threads are told
}

void smallMedian(const MedianState& state, const AreaJob& job)
{
    if (state.radius == 1)
        runMedian<LeastMedian>(job);
    else if (state.radius == 2)
        runMedian<SmallMedian<2>>(job);
    else
        runMedian<SmallMedian<3>>(job);
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

HWY_EXPORT(smallMedian);

namespace {

void medianArea(const AreaJob& job)
{
    const auto& state = static_cast<const MedianState&>(*job.state);
    if (state.radius > 3)
        return largeMedian(state.radius, job);
    if (state.radius > 0)
        return HWY_DYNAMIC_DISPATCH(smallMedian)(state, job);
    for (int c = 0; c < job.result.channels; ++c)
        for (int y = job.y0; y < job.y1; ++y)
            std::copy_n(rowOf(job.operands[0], c, y), job.result.width, rowOf(job.result, c, y));
}

std::unique_ptr<State> prepareMedian(const Setup& setup)
{
    auto state = std::make_unique<MedianState>();
    state->radius = held(setup.parameters[0].i[0], 0, kMostMedianRadius);
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
                                 medianArea,
                                 nullptr,
                                 kLargeMedianRows};

} // namespace vellor::nodes
#endif
