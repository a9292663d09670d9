#include "platform/nodes/neighbourhood/largemedian.h"

#include "platform/nodes/neighbourhood/rankedtile.h"
#include "platform/nodes/rows.h"

#include <algorithm>
#include <cstring>
#include <memory>

// The picture is cut into tiles whose pixels are numbered by their order first. What a pixel then takes does
// not depend on the radius:
//
//  - Of each column of the window, and of the whole window, it is kept how many pixels have ranks up to the
//    end of each bin. A column takes one pixel in and one out as the window moves down, the window one column
//    in and one out as it moves on (after S. Perreault and P. Hébert, "Median filtering in constant time",
//    2007; theirs are counts of values, added up by every search).
//  - The median's bin is as far up as there are counts that do not reach the middle.
//  - Which of the bin's pixels lie in the window is told by their places, all at once. The median is the one
//    with as many of them before it as the middle is beyond the bin's start.

#ifndef VELLOR_LARGE_MEDIAN_TILE
#define VELLOR_LARGE_MEDIAN_TILE
namespace vellor::nodes {
namespace {

struct TileOfResult
{
    float* corner;
    std::ptrdiff_t stride; // floats
    int width, rows;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/neighbourhood/largemedian.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

using ByteTag = hn::ScalableTag<std::uint8_t>;
using CountTag = hn::ScalableTag<std::int16_t>;

constexpr int kBins = RankedTile::kBins, kBin = RankedTile::kBin;
constexpr std::uint64_t kEachByte = 0x0101010101010101u;
constexpr int kBytes = static_cast<int>(hn::MaxLanes(ByteTag())), kCounts = kBytes / 2;

/// How many bits are set up to the end of each byte.
HWY_INLINE std::uint64_t bitsUpTo(std::uint64_t word)
{
    word -= word >> 1 & 0x5555555555555555u;
    word = (word & 0x3333333333333333u) + (word >> 2 & 0x3333333333333333u);
    return ((word + (word >> 4)) & 0x0f0f0f0f0f0f0f0fu) * kEachByte;
}

/// How many bits are set.
HWY_INLINE int countOf(std::uint64_t word)
{
#if HWY_TARGET == HWY_SSSE3
    return static_cast<int>(bitsUpTo(word) >> 56);
#else
    return __builtin_popcountll(word);
#endif
}

/// How many of the bytes, all below 128, are at most `limit`.
HWY_INLINE int bytesWithin(std::uint64_t bytes, int limit)
{
    const std::uint64_t left = (limit * kEachByte | kEachByte << 7) - bytes;
    return static_cast<int>((left >> 7 & kEachByte) * kEachByte >> 56);
}

/// Place of the set bit of a word that has `before` set bits below it. Byte by byte and bit by bit at once,
/// after S. Vigna, "Broadword implementation of rank/select queries", 2008.
HWY_INLINE int placeOfBit(std::uint64_t word, int before)
{
#if HWY_TARGET <= HWY_AVX3
    return __builtin_ctzll(_pdep_u64(std::uint64_t(1) << before, word));
#else
    const std::uint64_t upTo = bitsUpTo(word);
    const int byte = 8 * bytesWithin(upTo, before);
    before -= static_cast<int>(upTo << 8 >> byte & 0xff);
    const std::uint64_t spread = (word >> byte & 0xff) * kEachByte & 0x8040201008040201u;
    const std::uint64_t bits = (((spread | kEachByte << 7) - kEachByte) | spread) >> 7 & kEachByte;
    return byte + bytesWithin(bits * kEachByte, before);
#endif
}

/// A window that slides over a tile, row by row.
class SlidingWindow
{
public:
    SlidingWindow(const RankedTile& tile, int radius)
        : m_tile(tile), m_side(2 * radius + 1), m_middle(m_side * m_side / 2)
    {
        std::fill_n(m_steps, kBins, std::uint8_t(0));
        std::fill_n(m_steps + kBins, kBins, std::uint8_t(1));
        std::fill_n(m_none, RankedTile::kMostSide, std::uint8_t(kBins));
        std::fill_n(m_columns[0], tile.width() * kBins, std::uint8_t(0));
        for (int row = 0; row < m_side - 1; ++row)
            for (int x = 0; x < tile.width(); ++x)
                for (int i = 0; i < kBins; i += kBytes)
                    change(x, i, tile.binsOf(row)[x], kBins);
    }

    /// Medians of the windows whose upper row is `row`: rows come one after the other from 0 on.
    void run(int row, int count, float* result)
    {
        findBins(row, count);
        for (int x = 0; x < count; ++x)
            result[x] = medianIn(m_found[x], x, row);
    }

private:
    struct Found
    {
        std::int16_t bin, before; // of the bin's pixels in the window, how many come before the median
    };

    /// Counts of a column from bin i on, after a pixel has come and another has gone. Bin kBins: none.
    HWY_INLINE hn::Vec<ByteTag> change(int x, int i, int in, int out)
    {
        const ByteTag tag;
        const auto came = hn::LoadU(tag, m_steps + kBins - in + i);
        const auto went = hn::LoadU(tag, m_steps + kBins - out + i);
        const auto counts = hn::Add(hn::Load(tag, m_columns[x] + i), hn::Sub(came, went));
        hn::Store(counts, tag, m_columns[x] + i);
        return counts;
    }

    /// The bins that the medians are in.
    void findBins(int row, int count)
    {
        const std::uint8_t* in = m_tile.binsOf(row + m_side - 1);
        const std::uint8_t* out = row == 0 ? m_none : m_tile.binsOf(row - 1);
        hn::Vec<CountTag> counts[kBins / kCounts]; // of the window: pixels up to the end of each bin
        for (auto& some : counts)
            some = hn::Zero(CountTag());
        for (int x = 0; x < m_side - 1; ++x)
            move(x, in, out, m_steps, counts);
        for (int x = 0; x < count; ++x) {
            move(x + m_side - 1, in, out, x == 0 ? m_steps : m_columns[x - 1], counts);
            m_found[x] = find(counts);
        }
    }

    /// Takes column x in, and another one out.
    HWY_INLINE void move(int x, const std::uint8_t* in, const std::uint8_t* out, const std::uint8_t* leaving,
                         hn::Vec<CountTag>* counts)
    {
        const CountTag tag;
        const hn::Rebind<std::int8_t, CountTag> half;
        for (int i = 0; i < kBins / kBytes; ++i) {
            const auto column = change(x, i * kBytes, in[x], out[x]);
            const auto by = hn::BitCast(hn::RebindToSigned<ByteTag>(),
                                        hn::Sub(column, hn::Load(ByteTag(), leaving + i * kBytes)));
            counts[2 * i] = hn::Add(counts[2 * i], hn::PromoteTo(tag, hn::LowerHalf(half, by)));
            counts[2 * i + 1] = hn::Add(counts[2 * i + 1], hn::PromoteTo(tag, hn::UpperHalf(half, by)));
        }
    }

    HWY_INLINE Found find(const hn::Vec<CountTag>* counts)
    {
        const CountTag tag;
        const auto enough = hn::Set(tag, static_cast<std::int16_t>(m_middle + 1));
        for (int i = 0; i < kBins / kCounts; ++i)
            hn::Store(counts[i], tag, m_counts + kCounts + i * kCounts);
        std::size_t bin = 0; // bins up to whose end there are too few pixels
#if HWY_TARGET <= HWY_AVX3
        for (int i = 0; i < kBins / kCounts; ++i)
            bin += hn::CountTrue(tag, hn::Lt(counts[i], enough));
#else
        auto below = hn::Zero(tag);
        for (int i = 0; i < kBins / kCounts; ++i)
            below = hn::Sub(below, hn::VecFromMask(tag, hn::Lt(counts[i], enough)));
        const hn::Repartition<std::uint64_t, CountTag> wide;
        bin = hn::GetLane(hn::SumOfLanes(wide, hn::SumsOf8(hn::BitCast(ByteTag(), below))));
#endif
        return {static_cast<std::int16_t>(bin),
                static_cast<std::int16_t>(m_middle - m_counts[kCounts + bin - 1])};
    }

    /// Which of the bin's pixels from i on lie in the window at (x, y).
    HWY_INLINE std::uint64_t inside(int bin, int i, int x, int y) const
    {
        const ByteTag tag;
        const auto right =
            hn::Sub(hn::Load(tag, m_tile.columnsOf(bin) + i), hn::Set(tag, static_cast<std::uint8_t>(x)));
        const auto down =
            hn::Sub(hn::Load(tag, m_tile.rowsOf(bin) + i), hn::Set(tag, static_cast<std::uint8_t>(y)));
        const auto far = hn::Max(right, down);
        const auto near = hn::Eq(hn::Min(far, hn::Set(tag, static_cast<std::uint8_t>(m_side - 1))), far);
        std::uint8_t bytes[8] = {};
        hn::StoreMaskBits(tag, near, bytes);
        std::uint64_t bits;
        std::memcpy(&bits, bytes, sizeof bits);
        return bits;
    }

    HWY_INLINE float medianIn(Found found, int x, int y) const
    {
        const int bin = found.bin;
        int before = found.before, start = bin * kBin;
        std::uint64_t words[kBin / 64];
        for (int k = 0; k < kBin / 64; ++k) {
            words[k] = 0;
            for (int i = 0; i < 64; i += kBytes)
                words[k] |= inside(bin, 64 * k + i, x, y) << i;
        }
        std::uint64_t word = words[0];
        for (int k = 1; k < kBin / 64; ++k) {
            const int here = countOf(word);
            const int beyond = -(before >= here); // all bits or none: there is no telling ahead, so no branch
            word ^= (word ^ words[k]) & static_cast<std::uint64_t>(static_cast<std::int64_t>(beyond));
            before -= beyond & here;
            start += beyond & 64;
        }
        return m_tile.valueAt(start + placeOfBit(word, before));
    }

    const RankedTile& m_tile;
    int m_side, m_middle;
    alignas(64) std::uint8_t m_steps[2 * kBins]; // zeros, then ones
    std::uint8_t m_none[RankedTile::kMostSide];
    alignas(64) std::int16_t m_counts[kCounts + kBins] = {}; // after zeros
    Found m_found[RankedTile::kMostSide];
    alignas(64) std::uint8_t m_columns[RankedTile::kMostSide][kBins];
};

void medianOfTile(const RankedTile& tile, int radius, const TileOfResult& to)
{
    SlidingWindow window(tile, radius);
    for (int row = 0; row < to.rows; ++row)
        window.run(row, to.width, to.corner + row * to.stride);
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

HWY_EXPORT(medianOfTile);

void largeMedian(int radius, const AreaJob& job)
{
    const auto tile = std::make_unique<RankedTile>();
    const int width = job.result.width;
    for (int y = job.y0; y < job.y1; y += kLargeMedianRows) {
        const int rows = std::min(kLargeMedianRows, job.y1 - y), height = rows + 2 * radius;
        const int most = std::min(RankedTile::kMostSide, RankedTile::kMostPixels / height) - 2 * radius;
        const int across = (width + most - 1) / most;
        for (int c = 0; c < job.result.channels; ++c) {
            for (int k = 0; k < across && !job.stopped(); ++k) {
                const int x = width * k / across, count = width * (k + 1) / across - x;
                tile->fill(job.operands[0], c, x - radius, y - radius, count + 2 * radius, height);
                HWY_DYNAMIC_DISPATCH(medianOfTile)
                (*tile, radius, {rowOf(job.result, c, y) + x, job.result.stride, count, rows});
            }
        }
    }
}

} // namespace vellor::nodes
#endif
