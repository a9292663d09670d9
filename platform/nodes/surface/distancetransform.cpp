#include "platform/nodes/surface/distancetransform.h"

#include "platform/nodes/rows.h"

#include <cmath>
#include <numeric>

#ifndef VELLOR_DISTANCETRANSFORM_SHARED
#define VELLOR_DISTANCETRANSFORM_SHARED
namespace vellor::nodes {
namespace {

constexpr int kStrip = 128; // columns that are worked on together
constexpr int kSlack = 16;  // floats beyond a row that whole vectors may reach

/// Buffers of one row, with kSlack floats beyond `width + 1`.
struct DistanceBuffers
{
    float *own, *turned, *squares;
    std::int32_t *places, *rises; // the stack: where parabolas lie, and place^2 + column^2
    std::int32_t* nearest;        // whose parabola is the lowest, or null
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/surface/distancetransform.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

/// What one strip knows of its columns while it goes down or up them: the sign of the last pixel (negative in
/// the mask) and how far the last pixel of the other sign is.
struct StripColumns
{
    alignas(64) float sign[kStrip], distance[kStrip], firstSign[kStrip], firstChange[kStrip];
};

/// Distances upwards, not yet around, signed.
void goDown(const ImageView& mask, float threshold, int first, int count, StripColumns& columns, float* strip)
{
    const F far(kFar), one(1.0f);
    for (int i = 0; i < count; i += kLanes) {
        const F sign = choose(load(rowOf(mask, 0, 0) + first + i) >= F(threshold), -one, one);
        store(sign, columns.sign + i);
        store(sign, columns.firstSign + i);
        store(far, columns.distance + i);
        store(far, columns.firstChange + i);
    }
    for (int y = 0; y < mask.height; ++y) {
        const float* row = rowOf(mask, 0, y) + first;
        const F here(static_cast<float>(y));
        float* result = strip + std::ptrdiff_t(y) * kStrip;
        for (int i = 0; i < count; i += kLanes) {
            const F sign = choose(load(row + i) >= F(threshold), -one, one);
            const M same = sign == load(columns.sign + i);
            const F distance = choose(same, load(columns.distance + i) + one, one);
            store(sign, columns.sign + i);
            store(distance, columns.distance + i);
            store(minOf(load(columns.firstChange + i), choose(same, far, here)), columns.firstChange + i);
            store(sign * distance, result + i);
        }
    }
}

/// The nearer of upwards and downwards, around the edges.
void goUp(int height, int count, StripColumns& columns, float* strip)
{
    const F far(kFar), one(1.0f), zero(0.0f);
    alignas(64) float around[kStrip]; // distance from the first row upwards
    for (int i = 0; i < count; i += kLanes) {
        const M same = load(columns.sign + i) == load(columns.firstSign + i);
        store(choose(same, load(columns.distance + i) + one, one), around + i);
        store(load(columns.firstSign + i), columns.sign + i);
        store(load(columns.firstChange + i), columns.distance + i);
    }
    for (int y = height - 1; y >= 0; --y) {
        const F here(static_cast<float>(y));
        float* result = strip + std::ptrdiff_t(y) * kStrip;
        for (int i = 0; i < count; i += kLanes) {
            const F up = load(result + i), sign = choose(up < zero, -one, one);
            const F down = choose(sign == load(columns.sign + i), load(columns.distance + i) + one, one);
            store(sign, columns.sign + i);
            store(down, columns.distance + i);
            const F nearest = minOf(minOf(absOf(up), load(around + i) + here), down);
            store(sign * minOf(nearest, far), result + i);
        }
    }
}

void findColumns(const ImageView& mask, float threshold, const MutableImage& strips, int y0, int y1)
{
    for (int s = y0; s < y1; ++s) {
        const int first = s * kStrip, count = std::min(kStrip, mask.width - first);
        StripColumns columns;
        goDown(mask, threshold, first, count, columns, rowOf(strips, 0, s));
        goUp(mask.height, count, columns, rowOf(strips, 0, s));
    }
}

/// Row y of the columns' distances, 0 for what is measured from.
void gatherRow(const ImageView& strips, int width, int y, bool inside, float* own)
{
    const F way(inside ? -1.0f : 1.0f);
    for (int s = 0; s * kStrip < width; ++s) {
        const int first = s * kStrip, count = std::min(kStrip, width - first);
        const float* strip = rowOf(strips, 0, s) + std::ptrdiff_t(y) * kStrip;
        for (int i = 0; i < count; i += kLanes)
            storeAt(maxOf(load(strip + i) * way, F(0.0f)), own + first + i);
    }
}

/// Pushes the parabola at `place`, and first takes off those that it and the one below hide.
HWY_INLINE int pushParabola(const DistanceBuffers& b, int count, int place, float column)
{
    const auto whole = static_cast<std::int32_t>(column);
    const std::int32_t rise = place * place + whole * whole;
    while (count >= 2) {
        // Where two parabolas meet: (rise' - rise) / (2 (place' - place)).
        const int under = b.places[count - 2], top = b.places[count - 1];
        if (std::int64_t(b.rises[count - 1] - b.rises[count - 2]) * (place - top) <
            std::int64_t(rise - b.rises[count - 1]) * (top - under))
            break;
        --count;
    }
    b.places[count] = place;
    b.rises[count] = rise;
    return count + 1;
}

/// Squared distances from `first` to `end` - 1 out of the stack. Whole vectors reach beyond.
void readParabolas(const DistanceBuffers& b, int count, int first, int end)
{
    int x = first;
    for (int k = 0; k < count && x < end; ++k) {
        int until = end;
        if (k + 1 < count) {
            const double meeting =
                double(b.rises[k + 1] - b.rises[k]) / (2.0 * double(b.places[k + 1] - b.places[k]));
            if (meeting < x)
                continue;
            until = std::min(end, static_cast<int>(meeting) + 1);
        }
        const int place = b.places[k];
        const F square(static_cast<float>(b.rises[k] - place * place));
        for (int i = x; i < until; i += kLanes) {
            const F dx = countFrom(static_cast<float>(i - place));
            storeAt(dx * dx + square, b.squares + i);
        }
        if (b.nearest)
            std::fill(b.nearest + x, b.nearest + until, place);
        x = until;
    }
}

/// Squared distances of a row that starts and ends at a place where `turned` is least.
void findSquares(const DistanceBuffers& b, int width)
{
    const float least = b.turned[0];
    for (int x = 0; x < width;) {
        int end = x + 1;
        while (b.turned[end] != least)
            ++end;
        int count = pushParabola(b, 0, x, least);
        for (int q = x + 1; q < end; ++q)
            if (b.turned[q] < kFar)
                count = pushParabola(b, count, q, b.turned[q]);
        count = pushParabola(b, count, end, least);
        readParabolas(b, count, x, end);
        x = end;
        if (least == 0.0f) {
            int level = x;
            while (level < width && b.turned[level + 1] == 0.0f)
                ++level;
            std::fill(b.squares + x, b.squares + level, 0.0f);
            if (b.nearest)
                std::iota(b.nearest + x, b.nearest + level, x);
            x = level;
        }
    }
}

void findRow(const ImageView& strips, int width, int y, bool inside, const DistanceBuffers& b,
             float* distances)
{
    gatherRow(strips, width, y, inside, b.own);
    const float* least = b.own;
    for (const float* p = b.own; p<b.own + width&& * least> 0.0f; ++p)
        least = *p < *least ? p : least;
    if (*least >= kFar) {
        std::fill_n(distances, width, kFar);
        if (b.nearest)
            std::fill_n(b.nearest, width, -1);
        return;
    }
    const int cut = static_cast<int>(least - b.own);
    copyWrapped(b.own, width, cut, width + 1, b.turned);
    findSquares(b, width);
    for (int i = 0; i < width; i += kLanes)
        storeAt(sqrtOf(loadAt(b.squares + i)), b.turned + i);
    std::copy_n(b.turned, width - cut, distances + cut);
    std::copy_n(b.turned + width - cut, cut, distances);
    if (!b.nearest)
        return;
    std::rotate(b.nearest, b.nearest + width - cut, b.nearest + width);
    for (int x = 0; x < width; ++x)
        b.nearest[x] = (b.nearest[x] + cut) % width;
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

HWY_EXPORT(findColumns);
HWY_EXPORT(findRow);

ScratchShape distanceColumnsShape(int width, int height)
{
    return {kStrip * height, (width + kStrip - 1) / kStrip, 1};
}

void findDistanceColumns(const ImageView& mask, float threshold, const MutableImage& columns, int y0, int y1)
{
    HWY_DYNAMIC_DISPATCH(findColumns)(mask, threshold, columns, y0, y1);
}

DistanceRows::DistanceRows(const ImageView& columns, int width, int height)
    : m_columns(columns), m_width(width), m_height(height), m_own(width + 1 + kSlack),
      m_turned(width + 1 + kSlack), m_squares(width + 1 + kSlack), m_other(width), m_places(width + 2),
      m_rises(width + 2)
{
}

void DistanceRows::nearest(int y, std::int32_t* columns, float* rows)
{
    find(y, false, m_other.data(), columns);
    for (int x = 0; x < m_width; ++x)
        rows[x] = columns[x] < 0 ? kFar : m_own[columns[x]];
}

void DistanceRows::find(int y, bool inside, float* distances, std::int32_t* nearest)
{
    const DistanceBuffers buffers{m_own.data(),    m_turned.data(), m_squares.data(),
                                  m_places.data(), m_rises.data(),  nearest};
    HWY_DYNAMIC_DISPATCH(findRow)(m_columns, m_width, y, inside, buffers, distances);
}

void DistanceRows::both(int y, float* distances)
{
    outside(y, m_other.data());
    inside(y, distances);
    for (int x = 0; x < m_width; ++x)
        distances[x] = distances[x] > 0.0f ? distances[x] - 0.5f : 0.5f - m_other[x];
}

} // namespace vellor::nodes
#endif
