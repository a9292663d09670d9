#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"

#include <algorithm>
#include <cmath>

#ifndef VELLOR_AUTOLEVELS_STATE
#define VELLOR_AUTOLEVELS_STATE
namespace vellor::nodes {
namespace {

// Passes: the range of each stripe of the picture, of the whole, histograms of the stripes over that range,
// and from them what is stretched to what. Stripes do not depend on how the work is shared, and counts are
// exact floats.
constexpr int kStripes = 64, kBins = 4096;

enum AutolevelsPass
{
    kStripeRanges,
    kRange,
    kHistograms,
    kBounds,
    kStretch
};

struct AutolevelsState : State
{
    float clipLow = 0.0f, clipHigh = 0.0f, outLow = 0.0f, outHigh = 1.0f;
    bool together = true;
    int tones = 1; // channels but alpha

    bool clips() const { return clipLow > 0.0f || clipHigh > 0.0f; }
};

/// Where a channel's values lie in the rows of passes: its lowest and highest.
constexpr int kLow = 0, kHigh = 1;

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/autolevels.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

struct Range
{
    float low = 3e38f, high = -3e38f;

    void add(Range other)
    {
        low = std::min(low, other.low);
        high = std::max(high, other.high);
    }
};

/// Rows of the operand that a stripe holds.
int stripeBegin(int stripe, int height)
{
    return static_cast<int>(static_cast<std::int64_t>(stripe) * height / kStripes);
}

/// The range of what is finite.
Range rangeOfRow(const float* row, int width)
{
    F low(3e38f), high(-3e38f);
    const int whole = width / kLanes * kLanes;
    for (int i = 0; i < whole; i += kLanes) {
        const F value = load(row + i);
        const M finite = absOf(value) < F(3e38f);
        low = minOf(low, choose(finite, value, low));
        high = maxOf(high, choose(finite, value, high));
    }
    Range range;
    std::array<float, 2 * kLanes> lanes;
    storeAt(low, lanes.data());
    storeAt(high, lanes.data() + kLanes);
    for (int i = 0; i < kLanes; ++i)
        range.add({lanes[i], lanes[kLanes + i]});
    for (int i = whole; i < width; ++i)
        if (std::abs(row[i]) < 3e38f)
            range.add({row[i], row[i]});
    return range;
}

void findStripeRanges(const AreaJob& job, const AutolevelsState& state)
{
    const ImageView& image = job.operands[0];
    for (int stripe = job.y0; stripe < job.y1; ++stripe) {
        for (int c = 0; c < state.tones; ++c) {
            Range range;
            for (int y = stripeBegin(stripe, image.height);
                 y < stripeBegin(stripe + 1, image.height) && !job.stopped(); ++y)
                range.add(rangeOfRow(rowOf(image, c, y), image.width));
            rowOf(job.result, c, stripe)[kLow] = range.low;
            rowOf(job.result, c, stripe)[kHigh] = range.high;
        }
    }
}

Range rangeIn(const float* row)
{
    return {row[kLow], row[kHigh]};
}

/// Gives each channel its range, or all channels the range of all.
void putRanges(const AutolevelsState& state, std::array<Range, kMaxChannels> ranges,
               const MutableImage& result)
{
    Range all;
    for (int c = 0; c < state.tones; ++c)
        all.add(ranges[c]);
    for (int c = 0; c < state.tones; ++c) {
        const Range range = state.together ? all : ranges[c];
        rowOf(result, c, 0)[kLow] = range.low;
        rowOf(result, c, 0)[kHigh] = range.high;
    }
}

void findRange(const AreaJob& job, const AutolevelsState& state)
{
    std::array<Range, kMaxChannels> ranges;
    for (int c = 0; c < state.tones; ++c)
        for (int stripe = 0; stripe < kStripes; ++stripe)
            ranges[c].add(rangeIn(rowOf(job.scratch[kStripeRanges], c, stripe)));
    putRanges(state, ranges, job.result);
}

void countRow(const float* row, int width, Range range, std::array<std::uint32_t, kBins>& bins)
{
    const F low(range.low), factor(static_cast<float>(kBins) / std::max(range.high - range.low, 1e-30f));
    std::array<std::uint32_t, kLanes> indices;
    for (int i = 0; i < width; i += kLanes) {
        const F position = clampOf((load(row + i) - low) * factor, F(0.0f), F(kBins - 1.0f));
        storeAt(toInteger(position), indices.data());
        const int count = std::min(kLanes, width - i);
        for (int lane = 0; lane < count; ++lane)
            ++bins[indices[lane]];
    }
}

void countTones(const AreaJob& job, const AutolevelsState& state)
{
    const ImageView& image = job.operands[0];
    std::array<std::uint32_t, kBins> bins;
    for (int stripe = job.y0; stripe < job.y1 && state.clips(); ++stripe) {
        for (int c = 0; c < state.tones; ++c) {
            bins.fill(0);
            const Range range = rangeIn(rowOf(job.scratch[kRange], c, 0));
            for (int y = stripeBegin(stripe, image.height);
                 y < stripeBegin(stripe + 1, image.height) && !job.stopped(); ++y)
                countRow(rowOf(image, c, y), image.width, range, bins);
            std::copy(bins.begin(), bins.end(), rowOf(job.result, c, stripe));
        }
    }
}

/// Cuts the ends off a range: shares of the pixels, found in a histogram over it.
Range clipped(Range range, const std::vector<double>& bins, const AutolevelsState& state)
{
    double total = 0.0;
    for (const double count : bins)
        total += count;
    const float width = (range.high - range.low) / static_cast<float>(kBins);
    int first = 0, last = kBins - 1;
    for (double left = state.clipLow * total; first < last && left >= bins[first]; ++first)
        left -= bins[first];
    for (double left = state.clipHigh * total; last > first && left >= bins[last]; --last)
        left -= bins[last];
    return {first == 0 ? range.low : range.low + width * static_cast<float>(first),
            last == kBins - 1 ? range.high : range.low + width * static_cast<float>(last + 1)};
}

void findBounds(const AreaJob& job, const AutolevelsState& state)
{
    std::array<Range, kMaxChannels> ranges;
    for (int c = 0; c < state.tones; ++c)
        ranges[c] = rangeIn(rowOf(job.scratch[kRange], c, 0));
    if (!state.clips())
        return putRanges(state, ranges, job.result);
    std::vector<double> bins(kBins, 0.0);
    for (int c = 0; c < state.tones; ++c) {
        for (int stripe = 0; stripe < kStripes; ++stripe) {
            const float* counts = rowOf(job.scratch[kHistograms], c, stripe);
            for (int i = 0; i < kBins; ++i)
                bins[i] += counts[i];
        }
        const bool complete = !state.together || c + 1 == state.tones;
        if (!complete)
            continue;
        const Range cut = clipped(ranges[c], bins, state);
        for (int to = state.together ? 0 : c; to <= c; ++to)
            ranges[to] = cut;
        std::fill(bins.begin(), bins.end(), 0.0);
    }
    putRanges(state, ranges, job.result);
}

void stretch(const AreaJob& job, const AutolevelsState& state)
{
    const ImageView& image = job.operands[0];
    for (int c = 0; c < job.result.channels; ++c) {
        if (c >= state.tones) {
            for (int y = job.y0; y < job.y1; ++y)
                std::copy_n(rowOf(image, c, y), image.width, rowOf(job.result, c, y));
            continue;
        }
        const Range range = rangeIn(rowOf(job.scratch[kBounds], c, 0));
        const float span = range.high - range.low;
        const F low(range.low), factor(span > 1e-12f ? 1.0f / span : 0.0f);
        const F outLow(state.outLow), outSpan(state.outHigh - state.outLow);
        for (int y = job.y0; y < job.y1; ++y) {
            const float* from = rowOf(image, c, y);
            float* to = rowOf(job.result, c, y);
            for (int i = 0; i < image.width; i += kLanes)
                store(outLow + outSpan * clampOf((load(from + i) - low) * factor, F(0.0f), F(1.0f)), to + i);
        }
    }
}

void autolevelsArea(const AreaJob& job)
{
    const auto& state = static_cast<const AutolevelsState&>(*job.state);
    switch (job.pass) {
    case kStripeRanges:
        return findStripeRanges(job, state);
    case kRange:
        return findRange(job, state);
    case kHistograms:
        return countTones(job, state);
    case kBounds:
        return findBounds(job, state);
    default:
        return stretch(job, state);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(autolevelsArea)

static std::unique_ptr<State> prepareAutolevels(const Setup& setup)
{
    auto state = std::make_unique<AutolevelsState>();
    const ParameterValue* p = setup.parameters;
    state->clipLow = held(p[0].f[0], 0.0f, 0.49f);
    state->clipHigh = held(p[1].f[0], 0.0f, 0.49f);
    state->together = p[2].i[0] == 0;
    state->outLow = p[3].f[0];
    state->outHigh = p[4].f[0];
    state->tones = std::min(setup.channels, 3);
    return state;
}

static std::vector<ScratchShape> autolevelsScratch(const State* state, const Setup& setup)
{
    const int histogram = static_cast<const AutolevelsState*>(state)->clips() ? kBins : 1;
    const int channels = setup.channels;
    return {{2, kStripes, channels}, {2, 1, channels}, {histogram, kStripes, channels}, {2, 1, channels}};
}

const NodeDeclaration autolevelsNode{
    "autolevels",
    "Auto Levels",
    "Tone",
    "Stretches the tones that the picture has to the range from outlow to outhigh. Shares of the darkest and "
    "lightest "
    "pixels may be cut off, by a histogram of 4096 steps over the picture's range. A picture of one tone "
    "becomes outlow. "
    "Alpha stays.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to change."}},
    {{"cliplow", ParameterType::Float, {0.0}, 0, 0.49, "Which share of the pixels may become outlow."},
     {"cliphigh", ParameterType::Float, {0.0}, 0, 0.49, "Which share of the pixels may become outhigh."},
     {"channels",
      ParameterType::Choice,
      {0},
      0,
      1,
      "Whether red, green and blue are stretched together, which keeps hues, or each by itself, which takes "
      "out a cast.",
      {"together", "separately"}},
     {"outlow", ParameterType::Float, {0.0}, 0, 1, "The darkest value of the result."},
     {"outhigh", ParameterType::Float, {1.0}, 0, 1, "The lightest value of the result."}},
    prepareAutolevels,
    nullptr,
    runautolevelsArea,
    autolevelsScratch};

} // namespace vellor::nodes
#endif
