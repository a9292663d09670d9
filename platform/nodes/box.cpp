#include "platform/nodes/box.h"

#include "platform/nodes/parameters.h"
#include "platform/nodes/rowbuffer.h"
#include "platform/nodes/rows.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/box.cpp"
#include <hwy/foreach_target.h>

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

/// Sums of rows first to last, whole tiles at once where there are any.
void startSums(const ImageView& picture, const ImageView* tiles, int channel, int first, int last,
               float* sums)
{
    for (int x = 0; x < picture.width; x += kLanes)
        store(F(0.0f), sums + x);
    for (int y = first; y <= last;) {
        const int row = wrapped(y, picture.height), rows = std::min(kBoxTile, picture.height - row);
        if (tiles && row % kBoxTile == 0 && y + rows - 1 <= last) {
            addRow(rowOf(*tiles, channel, row / kBoxTile), picture.width, sums);
            y += rows;
        } else {
            addRow(rowOf(picture, channel, row), picture.width, sums);
            ++y;
        }
    }
}

/// The window's sums down at row y, from the running ones, and the running ones moved on to the next row.
void moveDown(const ImageView& picture, int channel, const BoxRadius& radius, int y, float* sums, float* row)
{
    const float* before = rowOf(picture, channel, y - radius.whole - 1);
    const float* leaving = rowOf(picture, channel, y - radius.whole);
    const float* entering = rowOf(picture, channel, y + radius.whole + 1);
    const F share(radius.share);
    for (int x = 0; x < picture.width; x += kLanes) {
        const F sum = load(sums + x), next = load(entering + x);
        store(radius.share > 0.0f ? sum + share * (load(before + x) + next) : sum, row + x);
        store(sum + (next - load(leaving + x)), sums + x);
    }
}

/// Means of windows across a row with a margin of radius.whole + 1 pixels and one vector on either side.
/// A window is put together from sums of 1, 4, 16... pixels as its number of pixels is from digits to base 4.
class WindowsAcross
{
public:
    /// Keeps hold of the row, whose first pixel is at `middle`.
    WindowsAcross(const BoxRadius& radius, int width, float scale, const float* middle)
        : m_share(radius.share), m_scale(scale), m_width(width), m_before(middle - radius.whole - 1),
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

    void run(float* result)
    {
        for (Level& level : m_levels)
            sumFour(level);
        const F share(m_share), scale(m_scale);
        for (int x = 0; x < m_width; x += kLanes) {
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
    int m_width;
    const float *m_before, *m_after;
    std::vector<Level> m_levels;
    std::vector<const float*> m_terms;
};

void boxBand(const BoxPlan& plan, const ImageView& picture, const ImageView* tiles, int channel,
             const MutableImage& result, int y0, int y1)
{
    const int width = picture.width, margin = (plan.x.whole + 16) / 16 * 16;
    const auto size = [](const BoxRadius& r) {
        return 2.0f * (static_cast<float>(r.whole) + r.share) + 1.0f;
    };
    RowBuffer sums(width), line(width + 2 * margin);
    float* middle = line.data() + margin;
    WindowsAcross across(plan.x, width, 1.0f / (size(plan.x) * size(plan.y)), middle);
    for (int y = y0 / kBoxTile * kBoxTile; y < y1; ++y) {
        if (y % kBoxTile == 0)
            startSums(picture, tiles, channel, y - plan.y.whole, y + plan.y.whole, sums.data());
        moveDown(picture, channel, plan.y, y, sums.data(), middle);
        if (y < y0)
            continue;
        for (int i = 0; i <= plan.x.whole; ++i) {
            middle[-1 - i] = middle[wrapped(-1 - i, width)];
            middle[width + i] = middle[wrapped(i, width)];
        }
        across.run(rowOf(result, channel, y));
    }
}

void runBoxBand(const BoxPlan& plan, int pass, const ImageView& picture, const ImageView& tiles,
                const MutableImage& result, int y0, int y1)
{
    for (int c = 0; c < result.channels; ++c) {
        if (pass + 1 < plan.passes())
            tileBand(picture, c, result, y0, y1);
        else
            boxBand(plan, picture, plan.tiled() ? &tiles : nullptr, c, result, y0, y1);
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
