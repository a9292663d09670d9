#include "platform/nodes/neighbourhood/morphology.h"

#include "platform/nodes/dispatch.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rowbuffer.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

#include <cmath>

// A square is taken down and then across. Down, after M. van Herk (1992) and J. Gil and M. Werman (1993): a
// window of n rows that begins in one block of n rows and ends in the next is the extreme of what remains of
// the one and what has come of the other. Across, windows are made of two that overlap and are half as long.
//
// A disc is a stack of lines, each wider than the ones outside it. The extremes of its inner lines are
// widened step by step while the rows further out join in, so that a line costs what it is wider than the
// next.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/neighbourhood/morphology.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

template<bool least> HWY_INLINE F extreme(F a, F b)
{
    return least ? minOf(a, b) : maxOf(a, b);
}

template<bool least> void joinRow(const float* row, int count, float* with)
{
    for (int x = 0; x < count; x += kLanes)
        storeAt(extreme<least>(loadAt(with + x), loadAt(row + x)), with + x);
}

/// The extremes of `reach` pixels on either side: pixel 0 of the result is pixel `reach` of the row. The
/// result may be the row. Gives `count` pixels.
template<bool least> void widen(float* row, int count, int reach)
{
    const int window = 2 * reach + 1;
    for (int size = 1; size < window;) {
        const int step = std::min(size, window - size);
        for (int x = 0; x < count + window - size - step; x += kLanes)
            storeAt(extreme<least>(loadAt(row + x), loadAt(row + x + step)), row + x);
        size += step;
    }
}

/// Half the width of a disc's line `away` lines from its middle.
int halfLine(int radius, int away)
{
    // Discs reach a little less than half a pixel beyond their radius, so that small ones are round.
    const double outer = radius + 0.4, square = outer * outer - static_cast<double>(away) * away;
    return square > 0.0 ? static_cast<int>(std::sqrt(square)) : 0;
}

template<bool least>
void discRow(const AreaJob& job, int channel, int y, int radius, float* line, float* pair)
{
    const ImageView& source = job.operands[0];
    const int width = source.width, full = width + 2 * radius;
    copyWrapped(rowOf(source, channel, y), width, -radius, full, line);
    int left = radius; // pixels of margin that the line still has on either side
    for (int away = 1; away <= radius + 1 && !job.stopped(); ++away) {
        const int narrower = away > radius ? 0 : halfLine(radius, away);
        const int step = left - narrower;
        if (step > 0)
            widen<least>(line, width + 2 * narrower, step);
        left = narrower;
        if (away > radius)
            break;
        for (const int row : {y - away, y + away}) {
            copyWrapped(rowOf(source, channel, row), width, -left, width + 2 * left, pair);
            joinRow<least>(pair, width + 2 * left, line);
        }
    }
    std::copy_n(line, width, rowOf(job.result, channel, y));
}

/// Extremes down of rows y - radius to y + radius for a band, into rows of `stride` floats.
template<bool least>
void extremesDown(const AreaJob& job, int channel, int y0, int count, int radius, std::size_t stride,
                  float* result)
{
    const ImageView& source = job.operands[0];
    const int width = source.width, window = 2 * radius + 1;
    RowBuffer held(width);
    float* running = held.data();
    std::copy_n(rowOf(source, channel, y0 + radius), width, running);
    for (int j = window - 1; j >= 0 && !job.stopped(); --j) {
        if (j < window - 1)
            joinRow<least>(rowOf(source, channel, y0 - radius + j), width, running);
        if (j < count)
            std::copy_n(running, width, result + j * stride);
    }
    for (int j = 1; j < count; ++j) {
        const float* row = rowOf(source, channel, y0 + radius + j);
        if (j == 1)
            std::copy_n(row, width, running);
        else
            joinRow<least>(row, width, running);
        joinRow<least>(running, width, result + j * stride);
    }
}

template<bool least> void squareBand(const AreaJob& job, int channel, int radius)
{
    const int width = job.result.width;
    const std::size_t stride = static_cast<std::size_t>(width + 15) / 16 * 16;
    const int atOnce = std::min(2 * radius + 1, job.y1 - job.y0);
    RowBuffer down(stride * atOnce), line(width + 2 * radius);
    for (int y = job.y0; y < job.y1; y += atOnce) {
        const int count = std::min(atOnce, job.y1 - y);
        extremesDown<least>(job, channel, y, count, radius, stride, down.data());
        for (int j = 0; j < count; ++j) {
            copyWrapped(down.data() + j * stride, width, -radius, width + 2 * radius, line.data());
            widen<least>(line.data(), width, radius);
            std::copy_n(line.data(), width, rowOf(job.result, channel, y + j));
        }
    }
}

template<bool least> void morphologyBand(const MorphologyState& state, const AreaJob& job)
{
    for (int c = 0; c < job.result.channels; ++c) {
        if (state.square) {
            squareBand<least>(job, c, state.radius);
            continue;
        }
        RowBuffer line(job.result.width + 2 * state.radius), pair(job.result.width + 2 * state.radius);
        for (int y = job.y0; y < job.y1; ++y)
            discRow<least>(job, c, y, state.radius, line.data(), pair.data());
    }
}

void morphologyArea(const AreaJob& job)
{
    const auto& state = static_cast<const MorphologyState&>(*job.state);
    if (state.least)
        morphologyBand<true>(state, job);
    else
        morphologyBand<false>(state, job);
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(morphologyArea)

std::unique_ptr<State> prepareMorphology(const Setup& setup, bool least)
{
    auto state = std::make_unique<MorphologyState>();
    const auto width = static_cast<float>(setup.width);
    state->radius = static_cast<int>(held(setup.parameters[0].f[0], 0.0f, 250.0f) * 0.001f * width + 0.5f);
    state->square = held(setup.parameters[1].i[0], 0, 1) == 1;
    state->least = least;
    return state;
}

void runMorphology(const AreaJob& job)
{
    runmorphologyArea(job);
}

} // namespace vellor::nodes
#endif
