#include "platform/nodes/box.h"

#include "platform/nodes/parameters.h"
#include "platform/nodes/rowbuffer.h"
#include "platform/nodes/rows.h"

#include <algorithm>

#ifndef VELLOR_BOX_BLOCKS
#define VELLOR_BOX_BLOCKS
namespace vellor::nodes {
namespace {

constexpr int kCachedFloats = 1 << 18; // a share of the second cache
constexpr int kMostColumns = 1024;     // of a block: its line and the sums of it stay in the first cache
constexpr int kAhead = 2; // rows that are fetched ahead: blocks are too narrow for processors to see

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/box.cpp"
#include <hwy/foreach_target.h>

#include <hwy/cache_control.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void addRow(const float* row, int width, float* sums)
{
    for (int x = 0; x < width; x += kLanes)
        store(load(sums + x) + load(row + x), sums + x);
}

void tileBand(const ImageView& picture, int channel, const MutableImage& result, int y0, int y1)
{
    for (int y = y0; y < y1; ++y) {
        const int first = y * kBoxTile, end = std::min(first + kBoxTile, picture.height);
        float* sums = rowOf(result, channel, y);
        std::copy_n(rowOf(picture, channel, first), picture.width, sums);
        for (int row = first + 1; row < end; ++row)
            addRow(rowOf(picture, channel, row), picture.width, sums);
    }
}

/// Columns of the picture that lie beside one another: x to x + count - 1.
struct Columns
{
    int x, count;
    float* sums; // the running ones: whole vectors
    float* line; // where the window's sums of a row go
};

/// Rows of picture or tiles that are summed up one after another.
class RowList
{
public:
    /// Rows first to last, whole tiles at once where there are any.
    RowList(const ImageView& picture, const ImageView* tiles, int channel, int first, int last)
    {
        for (int y = first; y <= last;) {
            const int row = wrapped(y, picture.height), rows = std::min(kBoxTile, picture.height - row);
            const bool whole = tiles && row % kBoxTile == 0 && y + rows - 1 <= last;
            m_rows.push_back(whole ? rowOf(*tiles, channel, row / kBoxTile) : rowOf(picture, channel, row));
            y += whole ? rows : 1;
        }
    }

    void sum(const Columns& columns) const
    {
        constexpr int kStep = 4 * kLanes;
        int x = 0;
        for (; x + kStep <= columns.count; x += kStep) {
            F a(0.0f), b(0.0f), c(0.0f), d(0.0f);
            for (const float* row : m_rows) {
                const float* from = row + columns.x + x;
                a += loadAt(from);
                b += loadAt(from + kLanes);
                c += loadAt(from + 2 * kLanes);
                d += loadAt(from + 3 * kLanes);
            }
            store(a, columns.sums + x);
            store(b, columns.sums + x + kLanes);
            store(c, columns.sums + x + 2 * kLanes);
            store(d, columns.sums + x + 3 * kLanes);
        }
        for (; x < columns.count; x += kLanes) {
            F a(0.0f);
            for (const float* row : m_rows)
                a += loadAt(row + columns.x + x);
            store(a, columns.sums + x);
        }
    }

private:
    std::vector<const float*> m_rows;
};

/// The window's sums down at row y, from the running ones, and the running ones moved on to the next row.
void moveDown(const ImageView& picture, int channel, const BoxRadius& radius, int y, const Columns& columns)
{
    const float* before = rowOf(picture, channel, y - radius.whole - 1) + columns.x;
    const float* leaving = rowOf(picture, channel, y - radius.whole) + columns.x;
    const float* entering = rowOf(picture, channel, y + radius.whole + 1) + columns.x;
    const float* coming = rowOf(picture, channel, y + radius.whole + 1 + kAhead) + columns.x;
    const F share(radius.share);
    for (int x = 0; x < columns.count; x += kLanes) {
        hwy::Prefetch(coming + x);
        const F sum = load(columns.sums + x), next = loadAt(entering + x);
        storeAt(radius.share > 0.0f ? sum + share * (loadAt(before + x) + next) : sum, columns.line + x);
        store(sum + (next - loadAt(leaving + x)), columns.sums + x);
    }
}

/// Means of windows across rows of at most `width` pixels, with a margin of radius.whole + 1 pixels and one
/// vector on either side. A window is put together from sums of 1, 4, 16... pixels as its number of pixels is
/// from digits to base 4.
class WindowsAcross
{
public:
    /// Keeps hold of the row, whose first pixel is at `middle`.
    WindowsAcross(const BoxRadius& radius, int width, float scale, const float* middle)
        : m_share(radius.share), m_scale(scale), m_before(middle - radius.whole - 1),
          m_after(middle + radius.whole + 1)
    {
        const int window = 2 * radius.whole + 1;
        const float* sums = middle - radius.whole;
        for (int size = 1, done = 0;; size *= 4) {
            for (int digit = window / size % 4; digit > 0; --digit, done += size)
                m_terms.push_back(sums + done);
            if (4 * size > window)
                break;
            m_levels.push_back({sums, size, width + window - 4 * size, RowBuffer(width + window)});
            sums = m_levels.back().sums.data();
        }
    }

    /// The means of the row's first `count` pixels.
    void run(int count, float* result)
    {
        for (Level& level : m_levels)
            sumFour(level);
        const F share(m_share), scale(m_scale);
        for (int x = 0; x < count; x += kLanes) {
            F sum = loadAt(m_terms[0] + x);
            for (std::size_t t = 1; t < m_terms.size(); ++t)
                sum += loadAt(m_terms[t] + x);
            if (m_share > 0.0f)
                sum += share * (loadAt(m_before + x) + loadAt(m_after + x));
            store(sum * scale, result + x);
        }
    }

private:
    struct Level
    {
        const float* from; // sums of `size` pixels
        int size, count;
        RowBuffer sums; // of four times as many
    };

    static void sumFour(Level& level)
    {
        const float *a = level.from, *b = a + level.size, *c = b + level.size, *d = c + level.size;
        float* sums = level.sums.data();
        for (int x = 0; x < level.count; x += kLanes)
            store((loadAt(a + x) + loadAt(b + x)) + (loadAt(c + x) + loadAt(d + x)), sums + x);
    }

    float m_share, m_scale;
    const float *m_before, *m_after;
    std::vector<Level> m_levels;
    std::vector<const float*> m_terms;
};

/// Columns that are done at once: whole rows, or few enough for the rows of a window to stay in the second
/// cache, as long as what their windows reach beyond them is little beside them.
int blockWidth(const BoxPlan& plan, int width, int margin)
{
    const int fitting = std::min(kCachedFloats / (2 * plan.y.whole + 2) - 2 * margin, kMostColumns);
    if (fitting < 4 * margin || 2 * fitting > width)
        return width;
    const int blocks = (width + fitting - 1) / fitting;
    return ((width + blocks - 1) / blocks + 15) / 16 * 16;
}

/// Bands of one channel.
class BoxBand
{
public:
    BoxBand(const BoxPlan& plan, const ImageView& picture, const ImageView* tiles, int channel)
        : m_plan(plan), m_picture(picture), m_tiles(tiles), m_channel(channel),
          m_margin((plan.x.whole + 16) / 16 * 16), m_block(blockWidth(plan, picture.width, m_margin)),
          m_sums(m_block + 2 * m_margin + 3 * 16), m_line(m_block + 2 * m_margin),
          m_across(plan.x, m_block, 1.0f / (size(plan.x) * size(plan.y)), middle())
    {
    }

    void run(const MutableImage& result, int y0, int y1)
    {
        for (int x = 0; x < m_picture.width; x += m_block) {
            const int count = std::min(m_block, m_picture.width - x);
            const std::vector<Columns> columns = columnsAround(x, count);
            for (int y = y0 / kBoxTile * kBoxTile; y < y1; ++y) {
                if (y % kBoxTile == 0)
                    start(columns, y);
                for (const Columns& run : columns)
                    moveDown(m_picture, m_channel, m_plan.y, y, run);
                if (y < y0)
                    continue;
                if (count == m_picture.width)
                    wrapMargins();
                m_across.run(count, rowOf(result, m_channel, y) + x);
            }
        }
    }

private:
    static float size(const BoxRadius& r) { return 2.0f * (static_cast<float>(r.whole) + r.share) + 1.0f; }
    float* middle() { return m_line.data() + m_margin; }

    /// A block with what its windows reach beyond it. Whole rows come by themselves.
    std::vector<Columns> columnsAround(int x, int count)
    {
        std::vector<Columns> result;
        float* sums = m_sums.data();
        const auto add = [&](int from, int to) {
            const int width = m_picture.width;
            const int begin = std::max(from, x - m_margin), end = std::min(to, x + count + m_margin);
            if (begin >= end)
                return;
            result.push_back({wrapped(begin, width), end - begin, sums, middle() + (begin - x)});
            sums += (end - begin + 15) / 16 * 16;
        };
        if (count < m_picture.width)
            add(-m_margin, 0);
        add(0, m_picture.width);
        if (count < m_picture.width)
            add(m_picture.width, m_picture.width + m_margin);
        return result;
    }

    void start(const std::vector<Columns>& columns, int y) const
    {
        const RowList rows(m_picture, m_tiles, m_channel, y - m_plan.y.whole, y + m_plan.y.whole);
        for (const Columns& run : columns)
            rows.sum(run);
    }

    void wrapMargins()
    {
        const int width = m_picture.width;
        for (int i = 0; i <= m_plan.x.whole; ++i) {
            middle()[-1 - i] = middle()[wrapped(-1 - i, width)];
            middle()[width + i] = middle()[wrapped(i, width)];
        }
    }

    const BoxPlan& m_plan;
    const ImageView& m_picture;
    const ImageView* m_tiles;
    int m_channel, m_margin, m_block;
    RowBuffer m_sums, m_line;
    WindowsAcross m_across;
};

void runBoxBand(const BoxPlan& plan, int pass, const ImageView& picture, const ImageView& tiles,
                const MutableImage& result, int y0, int y1)
{
    for (int c = 0; c < result.channels; ++c) {
        if (pass + 1 < plan.passes())
            tileBand(picture, c, result, y0, y1);
        else
            BoxBand(plan, picture, plan.tiled() ? &tiles : nullptr, c).run(result, y0, y1);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

HWY_EXPORT(runBoxBand);

static BoxRadius boxRadius(float radius, int width)
{
    const float inside = held(radius, 0.0f, 0.5f * static_cast<float>(width));
    BoxRadius result;
    result.whole = static_cast<int>(inside);
    result.share = inside - static_cast<float>(result.whole);
    return result;
}

BoxPlan planBox(float radiusX, float radiusY, int width)
{
    return {boxRadius(radiusX, width), boxRadius(radiusY, width)};
}

std::vector<ScratchShape> boxScratch(const BoxPlan& plan, int width, int height, int channels)
{
    if (!plan.tiled())
        return {};
    return {{width, (height + kBoxTile - 1) / kBoxTile, channels}};
}

void runBox(const BoxPlan& plan, int pass, const ImageView& picture, const ImageView& tiles,
            const MutableImage& result, int y0, int y1)
{
    HWY_DYNAMIC_DISPATCH(runBoxBand)(plan, pass, picture, tiles, result, y0, y1);
}

} // namespace vellor::nodes
#endif
