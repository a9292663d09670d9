#include "platform/nodes/gaussian.h"

#include "platform/nodes/rowbuffer.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

#ifndef VELLOR_GAUSSIAN_TAPS
#define VELLOR_GAUSSIAN_TAPS
namespace vellor::nodes {
namespace {

// Pictures whose size is no power of two cannot be reduced as far; then the blur is held to this many pixels.
constexpr int kMaxRadius = 1024;

// Pixels of a row that are expanded at once: four rows of them stay in the first cache.
constexpr int kExpandChunk = 1024;

/// Five boxes of a = 2 or 4 pixels one after another: 5a - 4 taps, symmetric; this is the first half. The
/// first tap lies `lead` pixels before the first of the a pixels that the reduced one stands for.
struct ReducingTaps
{
    int pairs, lead;
    float weights[8];
};
constexpr ReducingTaps kHalving = {3, 2, {1.0f / 32, 5.0f / 32, 10.0f / 32}};
constexpr ReducingTaps kQuartering = {8,
                                      6,
                                      {1.0f / 1024, 5.0f / 1024, 15.0f / 1024, 35.0f / 1024, 65.0f / 1024,
                                       101.0f / 1024, 135.0f / 1024, 155.0f / 1024}};

inline const ReducingTaps& reducingTaps(int factor)
{
    return factor == 2 ? kHalving : kQuartering;
}

/// A sum of pairs of rows with the same weight. Rows are read from the pointers on.
struct PairedRows
{
    PairedRows(int count, const float* weights) : count(count), weights(weights) {}
    int count, comingCount = 0;
    const float* weights;
    const float* coming[4]; // rows that the next sum will be the first to read: fetched meanwhile
    const float* first[kMaxRadius + 1];
    const float* second[kMaxRadius + 1];
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/gaussian.cpp"
#include <hwy/foreach_target.h>

#include <hwy/cache_control.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void sumPairs(const PairedRows& rows, int width, float* result)
{
    constexpr int kStep = 4 * kLanes;
    int x = 0;
    for (; x + kStep <= width; x += kStep) {
        F a(0.0f), b(0.0f), c(0.0f), d(0.0f);
        for (int r = 0; r < rows.comingCount; ++r)
            for (int line = 0; line < kStep; line += 16)
                hwy::Prefetch(rows.coming[r] + x + line);
        for (int t = 0; t < rows.count; ++t) {
            const F weight(rows.weights[t]);
            const float *first = rows.first[t] + x, *second = rows.second[t] + x;
            a += weight * (loadAt(first) + loadAt(second));
            b += weight * (loadAt(first + kLanes) + loadAt(second + kLanes));
            c += weight * (loadAt(first + 2 * kLanes) + loadAt(second + 2 * kLanes));
            d += weight * (loadAt(first + 3 * kLanes) + loadAt(second + 3 * kLanes));
        }
        store(a, result + x);
        store(b, result + x + kLanes);
        store(c, result + x + 2 * kLanes);
        store(d, result + x + 3 * kLanes);
    }
    for (; x < width; x += kLanes) {
        F a(0.0f);
        for (int t = 0; t < rows.count; ++t)
            a += F(rows.weights[t]) * (loadAt(rows.first[t] + x) + loadAt(rows.second[t] + x));
        store(a, result + x);
    }
}

/// Fills `margin` pixels on either side of a row with what lies at its other end.
void wrapMargins(float* row, int width, int margin)
{
    for (int i = 1; i <= margin; ++i) {
        row[-i] = row[wrapped(-i, width)];
        row[width - 1 + i] = row[wrapped(i - 1, width)];
    }
}

constexpr int kPhaseMargin = 16; // reaches two pixels, keeps the alignment

/// Every `factor`-th pixel of a row, from each of the first `factor` on: rows of `stride` floats.
void splitPhases(const float* row, int factor, int reducedWidth, float* phases, std::size_t stride)
{
    float* to = phases + kPhaseMargin;
    const FloatTag d;
    for (int x = 0; x < reducedWidth; x += kLanes) {
        F p[4];
        if (factor == 2)
            hn::LoadInterleaved2(d, row + 2 * x, p[0].v, p[1].v);
        else
            hn::LoadInterleaved4(d, row + 4 * x, p[0].v, p[1].v, p[2].v, p[3].v);
        for (int k = 0; k < factor; ++k)
            store(p[k], to + k * stride + x);
    }
    for (int k = 0; k < factor; ++k)
        wrapMargins(to + k * stride, reducedWidth, 2);
}

void reduceBand(int across, int down, const ImageView& source, int channel, const MutableImage& result,
                int y0, int y1)
{
    RowBuffer line(source.width + 4 * kLanes);
    const std::size_t stride = static_cast<std::size_t>(result.width + 63) / 16 * 16 + 2 * kPhaseMargin;
    RowBuffer phases(across * stride);
    const ReducingTaps &tapsDown = reducingTaps(down), &tapsAcross = reducingTaps(across);
    PairedRows rows(tapsDown.pairs, tapsDown.weights), columns(tapsAcross.pairs, tapsAcross.weights);
    const auto phaseFrom = [&](int place) {
        const int phase = place & (across - 1);
        return phases.data() + phase * stride + kPhaseMargin + (place - phase) / across;
    };
    for (int t = 0; t < columns.count; ++t) {
        columns.first[t] = phaseFrom(t - tapsAcross.lead);
        columns.second[t] = phaseFrom(across + tapsAcross.lead - 1 - t);
    }
    for (int y = y0; y < y1; ++y) {
        const float* whole = rowOf(source, channel, y);
        if (down > 1) {
            for (int t = 0; t < rows.count; ++t) {
                rows.first[t] = rowOf(source, channel, y * down - tapsDown.lead + t);
                rows.second[t] = rowOf(source, channel, y * down + down + tapsDown.lead - 1 - t);
            }
            rows.comingCount = down;
            for (int r = 0; r < down; ++r)
                rows.coming[r] = rowOf(source, channel, y * down + down + tapsDown.lead + r);
            float* to = across > 1 ? line.data() : rowOf(result, channel, y);
            sumPairs(rows, source.width, to);
            whole = to;
        }
        if (across > 1) {
            // Whole vectors are split: `line` goes on far enough for the last, a row of a picture may not.
            if (whole != line.data() && result.width % kLanes != 0)
                whole = std::copy_n(whole, source.width, line.data()) - source.width;
            // What the last vectors hold beyond the row may be anything; what they give is beyond the result.
            splitPhases(whole, across, result.width, phases.data(), stride);
            sumPairs(columns, result.width, rowOf(result, channel, y));
        }
    }
}

/// The weights of a blur for pairs of rows: the one in the middle is halved, being its own partner.
PairedRows pairsOf(const std::vector<float>& taps, RowBuffer& weights)
{
    std::copy(taps.begin(), taps.end(), weights.data());
    weights.data()[0] *= 0.5f;
    return {static_cast<int>(taps.size()), weights.data()};
}

void blurBand(const GaussianPlan& plan, const ImageView& source, int channel, const MutableImage& result,
              int y0, int y1)
{
    RowBuffer weightsDown(plan.y.blur.size()), weightsAcross(plan.x.blur.size());
    PairedRows rows = pairsOf(plan.y.blur, weightsDown), columns = pairsOf(plan.x.blur, weightsAcross);
    const int radius = columns.count - 1, margin = (radius + 15) / 16 * 16;
    RowBuffer line(source.width + 2 * margin + 4 * kLanes);
    float* middle = line.data() + margin;
    for (int t = 0; t <= radius; ++t) {
        columns.first[t] = middle - t;
        columns.second[t] = middle + t;
    }
    for (int y = y0; y < y1; ++y) {
        for (int t = 0; t < rows.count; ++t) {
            rows.first[t] = rowOf(source, channel, y - t);
            rows.second[t] = rowOf(source, channel, y + t);
        }
        float* to = rowOf(result, channel, y);
        float* between = radius == 0 ? to : middle;
        if (rows.count == 1)
            std::copy_n(rows.first[0], source.width, between);
        else
            sumPairs(rows, source.width, between);
        if (radius > 0) {
            wrapMargins(middle, source.width, radius);
            sumPairs(columns, source.width, to);
        }
    }
}

/// First reduced pixel that the four expanding taps of place `phase` use, against the reduced pixel it lies
/// in.
HWY_INLINE int firstTap(int phase, int factor)
{
    return 2 * phase + 1 < factor ? -2 : -1;
}

HWY_INLINE F spline(const F* values, const float* weights, int factor)
{
    return (F(weights[0]) * values[0] + F(weights[factor]) * values[1]) +
           (F(weights[2 * factor]) * values[2] + F(weights[3 * factor]) * values[3]);
}

/// `count` reduced pixels of a row, which has two more on either side, made `factor` = 2 or 4 times as many.
template<int factor> void expandFew(const float* weights, const float* row, int count, float* result)
{
    const FloatTag d;
    for (int x = 0; x < count; x += kLanes) {
        F around[5], places[factor];
        for (int t = 0; t < 5; ++t)
            around[t] = loadAt(row + x + t - 2);
        for (int phase = 0; phase < factor; ++phase)
            places[phase] = spline(around + 2 + firstTap(phase, factor), weights + phase, factor);
        if constexpr (factor == 2)
            hn::StoreInterleaved2(places[0].v, places[1].v, d, result + 2 * x);
        else
            hn::StoreInterleaved4(places[0].v, places[1].v, places[2].v, places[3].v, d, result + 4 * x);
    }
}

/// The same for a factor of 8 or more.
void expandMany(const float* weights, int factor, const float* row, int count, float* result)
{
    const hn::CappedTag<float, 4> d; // half of the least factor: no vector sees two sets of taps
    const int lanes = static_cast<int>(hn::Lanes(d));
    for (int x = 0; x < count; ++x) {
        for (int phase = 0; phase < factor; phase += lanes) {
            const float* from = row + x + firstTap(phase, factor);
            const float* w = weights + phase;
            const auto term = [&](int t) {
                return hn::Mul(hn::LoadU(d, w + t * factor), hn::Set(d, from[t]));
            };
            hn::StoreU(hn::Add(hn::Add(term(0), term(1)), hn::Add(term(2), term(3))), d,
                       result + x * factor + phase);
        }
    }
}

/// Rows of one chunk of columns, expanded across; the last four are kept.
class ExpandedRows
{
public:
    ExpandedRows(const GaussianAxis& axis, const ImageView& source, int channel, int x, int count)
        : m_axis(axis), m_source(source), m_channel(channel), m_x(x), m_count(count),
          m_stride(static_cast<std::size_t>(count * axis.factor + 4 * 16 + 15) / 16 * 16),
          m_rows(4 * m_stride), m_around(count + 4 + 2 * 16)
    {
    }

    /// Row y of the source, which may lie beyond it.
    const float* row(int y)
    {
        const int slot = y & 3;
        float* to = m_rows.data() + slot * m_stride;
        if (m_has[slot] && m_held[slot] == y)
            return to;
        m_has[slot] = true;
        m_held[slot] = y;
        const float* from = rowOf(m_source, m_channel, y);
        if (m_axis.factor == 1) {
            std::copy_n(from + m_x, m_count, to);
            return to;
        }
        copyWrapped(from, m_source.width, m_x - 2, m_count + 4, m_around.data());
        const float *weights = m_axis.expand.data(), *middle = m_around.data() + 2;
        if (m_axis.factor == 2)
            expandFew<2>(weights, middle, m_count, to);
        else if (m_axis.factor == 4)
            expandFew<4>(weights, middle, m_count, to);
        else
            expandMany(weights, m_axis.factor, middle, m_count, to);
        return to;
    }

private:
    const GaussianAxis& m_axis;
    const ImageView& m_source;
    int m_channel, m_x, m_count;
    std::size_t m_stride;
    RowBuffer m_rows, m_around;
    bool m_has[4] = {};
    int m_held[4] = {};
};

void expandBand(const GaussianPlan& plan, const ImageView& source, int channel, const MutableImage& result,
                int y0, int y1)
{
    const int factor = plan.y.factor;
    const int chunk = std::max(1, kExpandChunk / plan.x.factor);
    for (int x = 0; x < source.width; x += chunk) {
        const int count = std::min(chunk, source.width - x), wide = count * plan.x.factor;
        ExpandedRows rows(plan.x, source, channel, x, count);
        for (int y = y0; y < y1; ++y) {
            float* to = rowOf(result, channel, y) + x * plan.x.factor;
            if (factor == 1) {
                std::copy_n(rows.row(y), wide, to);
                continue;
            }
            const int phase = y % factor, first = y / factor + firstTap(phase, factor);
            const float *a = rows.row(first), *b = rows.row(first + 1), *c = rows.row(first + 2),
                        *d = rows.row(first + 3);
            for (int i = 0; i < wide; i += kLanes) {
                const F values[4] = {load(a + i), load(b + i), load(c + i), load(d + i)};
                store(spline(values, plan.y.expand.data() + phase, factor), to + i);
            }
        }
    }
}

void gaussianBand(const GaussianPlan& plan, int pass, const ImageView& source, const MutableImage& result,
                  int y0, int y1)
{
    const auto stage = [pass](const GaussianAxis& axis) {
        return pass < static_cast<int>(axis.stages.size()) ? axis.stages[pass] : 1;
    };
    for (int c = 0; c < result.channels; ++c) {
        if (pass < plan.reductions())
            reduceBand(stage(plan.x), stage(plan.y), source, c, result, y0, y1);
        else if (pass == plan.reductions())
            blurBand(plan, source, c, result, y0, y1);
        else
            expandBand(plan, source, c, result, y0, y1);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

HWY_EXPORT(gaussianBand);

namespace {

/// Normalised samples of a Gaussian from its middle on, with the given excess of the fourth cumulant.
std::vector<float> gaussianTaps(float sigma, float fourthCumulant, int count)
{
    std::vector<float> taps(count);
    float sum = 0.0f;
    const float square = sigma * sigma, edgeworth = fourthCumulant / (24.0f * square * square);
    for (int t = 0; t < count; ++t) {
        const float x = static_cast<float>(t) / sigma, xx = x * x;
        taps[t] = scalar::expOf(-0.5f * xx) * (1.0f + edgeworth * (xx * xx - 6.0f * xx + 3.0f));
        sum += t > 0 ? 2.0f * taps[t] : taps[t];
    }
    for (float& tap : taps)
        tap /= sum;
    return taps;
}

/// A cubic B-spline's four weights at the middle of each of `factor` places of a reduced pixel.
std::vector<float> splineTaps(int factor)
{
    std::vector<float> taps(4 * factor);
    for (int phase = 0; phase < factor; ++phase) {
        const float place = (static_cast<float>(phase) + 0.5f) / static_cast<float>(factor) - 0.5f;
        const float t = place < 0.0f ? place + 1.0f : place, s = 1.0f - t;
        taps[phase] = s * s * s / 6.0f;
        taps[factor + phase] = (4.0f - 6.0f * t * t + 3.0f * t * t * t) / 6.0f;
        taps[2 * factor + phase] = (4.0f - 6.0f * s * s + 3.0f * s * s * s) / 6.0f;
        taps[3 * factor + phase] = t * t * t / 6.0f;
    }
    return taps;
}

GaussianAxis planAxis(float sigma, int size)
{
    GaussianAxis axis;
    const float wanted = sigma > 0.0f ? std::min(sigma, static_cast<float>(size)) : 0.0f;
    while (wanted >= 4.0f * static_cast<float>(axis.factor) && size % (2 * axis.factor) == 0)
        axis.factor *= 2;
    float rest = wanted, fourth = 0.0f;
    if (axis.factor > 1) {
        for (int left = axis.factor; left > 1; left /= axis.stages.back())
            axis.stages.push_back(left % 4 == 0 ? 4 : 2);
        axis.expand = splineTaps(axis.factor);
        // Variance and fourth cumulant of a box of n samples: (n^2 - 1) / 12 and -(n^4 - 1) / 120; of the
        // continuous boxes that the spline is made of, n^2 / 12 and -n^4 / 120. Here in reduced pixels.
        const float sharp = 1.0f / static_cast<float>(axis.factor), sharp2 = sharp * sharp;
        const float share = wanted * sharp;
        rest = scalar::sqrtOf(share * share - 5.0f / 12.0f * (1.0f - sharp2) - 4.0f / 12.0f);
        fourth = (5.0f * (1.0f - sharp2 * sharp2) + 4.0f) / 120.0f;
    }
    const int radius = std::min(static_cast<int>(4.0f * rest) + 1, kMaxRadius);
    axis.blur = rest < 0.05f ? std::vector<float>{1.0f} : gaussianTaps(rest, fourth, radius + 1);
    return axis;
}

} // namespace

GaussianPlan planGaussian(float sigmaX, float sigmaY, int width, int height)
{
    return {planAxis(sigmaX, width), planAxis(sigmaY, height)};
}

std::vector<ScratchShape> gaussianScratch(const GaussianPlan& plan, int width, int height, int channels)
{
    std::vector<ScratchShape> shapes;
    for (int i = 0; i < plan.reductions(); ++i) {
        if (i < static_cast<int>(plan.x.stages.size()))
            width /= plan.x.stages[i];
        if (i < static_cast<int>(plan.y.stages.size()))
            height /= plan.y.stages[i];
        shapes.push_back({width, height, channels});
    }
    if (!shapes.empty())
        shapes.push_back(shapes.back());
    return shapes;
}

void runGaussian(const GaussianPlan& plan, int pass, const ImageView& source, const MutableImage& result,
                 int y0, int y1)
{
    HWY_DYNAMIC_DISPATCH(gaussianBand)(plan, pass, source, result, y0, y1);
}

} // namespace vellor::nodes
#endif
