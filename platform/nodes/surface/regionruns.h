#pragma once

// Connected regions of a mask as runs of pixels along rows, joined by union-find.
//
// A region is known by its first run in reading order, its root. Roots carry what is known of the region: the
// number of pixels and the box around them. Whichever run is joined to whichever first, the earlier root
// stays, so the regions come out the same however the rows were shared out.
//
// The table lies in a scratch picture of two channels that is two pixels wider than the mask. Each row starts
// with two words, the number of its runs and whether it was joined to the row above; two words for each run
// follow. Only what runs need is ever touched.

#include "platform/nodes/node.h"

#include <cstddef>
#include <cstdint>
#include <functional>

namespace vellor::nodes {

/// The interval of one axis that a region takes, going around at `size`.
struct RegionInterval
{
    int start = 0;       // 0 to size - 1
    int length = 1;      // 1 to size
    bool around = false; // the region meets itself: start is 0 and length is size
};

/// Runs are numbered so that those of a row follow one another. One thread for each group of rows that it
/// joins.
class RegionRuns
{
public:
    static ScratchShape shape(int width, int height) { return {width + 2, height, 2}; }
    RegionRuns(const MutableImage& table, int width, int height);
    /// The table as passes after the first get it. These write to it only in a pass of a single job.
    RegionRuns(const ImageView& table, int width, int height);

    int width() const { return m_x.size; }
    int height() const { return m_y.size; }

    void startRow(int y);
    /// The next run of a row: pixels start to end - 1, a region of its own.
    void addRun(int y, int start, int end);

    std::uint32_t firstRun(int y) const { return static_cast<std::uint32_t>(y * m_stride / 2) + 1; }
    std::uint32_t endRun(int y) const { return firstRun(y) + m_runs[y * m_stride]; }
    int start(std::uint32_t run) const { return static_cast<int>(m_runs[at(run)] & 0xffffu); }
    int end(std::uint32_t run) const { return static_cast<int>(m_runs[at(run)] >> 16); }

    /// Joins the regions of row y and the row above it that touch, at corners too if `diagonal`.
    void joinToAbove(int y, bool diagonal);
    /// Joins what is left: rows not joined to the row above yet, and regions that touch across the edges.
    /// Returns early once `stopped` says so.
    void joinRest(bool diagonal, const std::function<bool()>& stopped);
    /// Makes every run that is no root point at its root, and hands the roots in reading order to `name`,
    /// which gives 30 bits that replace the number of pixels. Returns early once `stopped` says so.
    template<typename Name> void nameRoots(const Name& name, const std::function<bool()>& stopped)
    {
        for (int y = 0; y < height() && !stopped(); ++y) {
            for (std::uint32_t run = firstRun(y); run < endRun(y); ++run) {
                std::uint32_t& link = m_runs[at(run) + 1];
                if (link & kRoot)
                    link = kRoot | name(run);
                else if (const std::uint32_t above = m_runs[at(link) + 1]; !(above & kRoot))
                    link = above;
            }
        }
    }

    /// After nameRoots().
    std::uint32_t rootOf(std::uint32_t run) const
    {
        const std::uint32_t link = m_runs[at(run) + 1];
        return link & kRoot ? run : link;
    }
    /// The number of pixels of a root's region, or its name once it has one.
    std::uint32_t valueOf(std::uint32_t root) const { return m_runs[at(root) + 1] & ~kRoot; }
    RegionInterval boxX(std::uint32_t root) const { return intervalOf(m_boxes[at(root)]); }
    RegionInterval boxY(std::uint32_t root) const { return intervalOf(m_boxes[at(root) + 1]); }

private:
    struct Pixel
    {
        int x = 0, y = 0;
    };
    struct Axis
    {
        int size = 1;
        RegionInterval joined(RegionInterval a, int inA, RegionInterval b, int inB, int step) const;
    };
    static constexpr std::uint32_t kRoot = 0x80000000u; // of a run's second word

    static std::size_t at(std::uint32_t run) { return 2 * std::size_t(run); }
    static RegionInterval intervalOf(std::uint32_t word);
    static std::uint32_t wordOf(const RegionInterval& interval);
    std::uint32_t find(std::uint32_t run);
    void joinRows(int upper, int lower, bool diagonal);
    void joinAcrossSides(int upper, int lower, bool diagonal);
    /// Joins two runs that have these pixels; `step` leads from one to the other.
    void join(std::uint32_t runA, Pixel inA, std::uint32_t runB, Pixel inB, Pixel step);

    std::uint32_t *m_runs, *m_boxes;
    std::ptrdiff_t m_stride;
    Axis m_x, m_y;
};

} // namespace vellor::nodes
