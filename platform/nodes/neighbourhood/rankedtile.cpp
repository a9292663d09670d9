#include "platform/nodes/neighbourhood/rankedtile.h"

#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

#include <algorithm>
#include <utility>

// A radix sort from the last digit on. Pixels near one another differ little: digits are cut from the range
// of the tile's bits, and two passes do for most tiles.

namespace vellor::nodes {
namespace {

constexpr int kPlaceBits = 16;

/// The order of the bits of floats as unsigned numbers: that of their values.
std::uint32_t orderedBits(float value)
{
    const std::uint32_t bits = scalar::bitsOf(value);
    return bits ^ (static_cast<std::uint32_t>(static_cast<std::int32_t>(bits) >> 31) | 0x80000000u);
}

float valueOf(std::uint32_t ordered)
{
    return scalar::floatOfBits(ordered & 0x80000000u ? ordered ^ 0x80000000u : ~ordered);
}

/// For the tile that most likely comes next: its rows are too short for the processor to see it coming.
void fetch(const float* from, const float* to)
{
    constexpr int kLine = 16; // floats
    for (; from < to; from += kLine)
        __builtin_prefetch(from, 0, 2);
}

int bitsIn(std::uint32_t number)
{
    return number ? 32 - __builtin_clz(number) : 0;
}

} // namespace

void RankedTile::fill(const ImageView& source, int channel, int x, int y, int width, int height)
{
    m_width = width;
    m_size = std::size_t(width) * height;
    read(source, channel, x, y, height);
    sort();
}

void RankedTile::read(const ImageView& source, int channel, int x, int y, int height)
{
    m_least = ~0u;
    m_most = 0;
    std::uint64_t* item = m_items.data();
    std::array<float, kMostSide> line;
    for (int row = 0; row < height; ++row) {
        const float* pixels = rowOf(source, channel, y + row);
        copyWrapped(pixels, source.width, x, m_width, line.data());
        fetch(pixels + x + m_width, pixels + std::min(x + 2 * m_width, source.width));
        for (int column = 0; column < m_width; ++column) {
            const std::uint32_t bits = orderedBits(line[column]);
            m_least = std::min(m_least, bits);
            m_most = std::max(m_most, bits);
            *item++ = std::uint64_t(bits) << kPlaceBits | unsigned(row << 8 | column);
        }
    }
}

/// Turns m_starts into the places where the items of each digit begin.
void RankedTile::start(const std::uint64_t* items, int shift, int bits)
{
    const std::uint64_t mask = (1u << bits) - 1, least = std::uint64_t(m_least) << kPlaceBits;
    std::uint16_t* starts = m_starts.data();
    std::fill_n(starts, mask + 1, std::uint16_t(0));
    for (const std::uint64_t* item = items; item != items + m_size; ++item)
        ++starts[(*item - least) >> shift & mask];
    unsigned sum = 0;
    for (std::size_t digit = 0; digit <= mask; ++digit)
        sum += std::exchange(starts[digit], static_cast<std::uint16_t>(sum));
}

void RankedTile::sort()
{
    const int bits = std::max(bitsIn(m_most - m_least), 1);
    const int passes = (bits + kMostDigit - 1) / kMostDigit, digit = (bits + passes - 1) / passes;
    const std::uint64_t mask = (1u << digit) - 1, least = std::uint64_t(m_least) << kPlaceBits;
    std::uint64_t *from = m_items.data(), *to = m_sorted.data();
    std::uint16_t* starts = m_starts.data();
    for (int shift = kPlaceBits; shift < kPlaceBits + bits; shift += digit) {
        start(from, shift, digit);
        for (std::size_t i = 0; i < m_size; ++i)
            to[starts[(from[i] - least) >> shift & mask]++] = from[i];
        std::swap(from, to);
    }
    number(from);
}

void RankedTile::number(const std::uint64_t* items)
{
    for (std::size_t rank = 0; rank < m_size; ++rank) {
        const std::uint64_t item = items[rank];
        m_columns[rank] = static_cast<std::uint8_t>(item);
        m_rows[rank] = static_cast<std::uint8_t>(item >> 8);
        m_values[rank] = valueOf(static_cast<std::uint32_t>(item >> kPlaceBits));
    }
    const int width = m_width;
    std::uint8_t* bins = m_bins.data();
    for (std::size_t rank = 0; rank < m_size; ++rank)
        bins[m_rows[rank] * width + m_columns[rank]] = static_cast<std::uint8_t>(rank / kBin);
}

} // namespace vellor::nodes
