#pragma once

// Pixels of a small part of a picture by their order, for filters that ask for ranks within windows.

#include "platform/nodes/node.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace vellor::nodes {

/// A rectangle of a channel that wraps around, its pixels numbered from the least to the greatest, by their
/// bits: -0 before 0, what is no number at either end. Ranks are grouped into bins of kBin. Takes a quarter
/// of a MiB.
class RankedTile
{
public:
    static constexpr int kBin = 128, kBins = 64;
    static constexpr int kMostPixels = kBin * kBins, kMostSide = 256;

    /// At most kMostPixels pixels, kMostSide along each side. (x, y) may lie anywhere.
    void fill(const ImageView& source, int channel, int x, int y, int width, int height);

    int width() const { return m_width; }
    /// The bin of each pixel of a row.
    const std::uint8_t* binsOf(int row) const { return m_bins.data() + row * m_width; }
    /// Where in the tile the pixels of a bin are, by rank: kBin bytes, aligned to 64. The tile's last bins
    /// may end with bytes that stand for no pixel.
    const std::uint8_t* columnsOf(int bin) const { return m_columns.data() + bin * kBin; }
    const std::uint8_t* rowsOf(int bin) const { return m_rows.data() + bin * kBin; }
    float valueAt(int rank) const { return m_values[static_cast<std::size_t>(rank)]; }

private:
    void read(const ImageView& source, int channel, int x, int y, int height);
    void sort();
    void start(const std::uint64_t* items, int shift, int bits);
    void number(const std::uint64_t* items);

    static constexpr int kMostDigit = 13; // bits that are sorted by at once

    int m_width = 0;
    std::size_t m_size = 0;
    std::uint32_t m_least = 0, m_most = 0;                    // of the pixels' ordered bits
    std::array<std::uint64_t, kMostPixels> m_items, m_sorted; // ordered bits, row, column
    std::array<std::uint16_t, 1 << kMostDigit> m_starts;      // by digit
    alignas(64) std::array<std::uint8_t, kMostPixels> m_columns, m_rows;
    std::array<std::uint8_t, kMostPixels> m_bins;
    std::array<float, kMostPixels> m_values;
};

} // namespace vellor::nodes
