#include "platform/nodes/gaussian.h"

#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

#ifndef VELLOR_GAUSSIAN_LIMITS
#define VELLOR_GAUSSIAN_LIMITS
namespace vellor::nodes {
namespace {

// Pictures whose size is no power of two cannot be reduced as far; then the blur is held to this many pixels.
constexpr int kMaxRadius = 1024;

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/gaussian.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

/// Weighted sum of `count` rows from row `first` on, wrapping.
void sumRows(const ImageView& source, int channel, int first, const float* weights, int count, int width,
             float* result)
{
    for (int x = 0; x < width; x += 2 * kLanes) {
        F a(0.0f), b(0.0f);
        const bool two = x + kLanes < width;
        for (int t = 0; t < count; ++t) {
            const float* row = rowOf(source, channel, first + t) + x;
            const F weight(weights[t]);
            a += weight * load(row);
            if (two)
                b += weight * load(row + kLanes);
        }
        store(a, result + x);
        if (two)
            store(b, result + x + kLanes);
    }
}

/// Sum of rows around row y with weights that are the same on both sides.
void blurDown(const GaussianAxis& axis, const ImageView& source, int channel, int y, float* result)
{
    const int radius = static_cast<int>(axis.blur.size()) - 1;
    const float* middle = rowOf(source, channel, y);
    for (int x = 0; x < source.width; x += 2 * kLanes) {
        const bool two = x + kLanes < source.width;
        F a = F(axis.blur[0]) * load(middle + x);
        F b = two ? F(axis.blur[0]) * load(middle + x + kLanes) : F(0.0f);
        for (int t = 1; t <= radius; ++t) {
            const float* above = rowOf(source, channel, y - t) + x;
            const float* below = rowOf(source, channel, y + t) + x;
            const F weight(axis.blur[t]);
            a += weight * (load(above) + load(below));
            if (two)
                b += weight * (load(above + kLanes) + load(below + kLanes));
        }
        store(a, result + x);
        if (two)
            store(b, result + x + kLanes);
    }
}

void blurAcross(const GaussianAxis& axis, const float* row, int width, float* result)
{
    const int radius = static_cast<int>(axis.blur.size()) - 1;
    alignas(64) float window[kChunk + 2 * kMaxRadius + 16];
    for (int x = 0; x < width; x += kChunk) {
        const int count = std::min(kChunk, width - x);
        copyWrapped(row, width, x - radius, count + 2 * radius, window);
        for (int i = 0; i < count; i += kLanes) {
            const float* middle = window + radius + i;
            F sum = F(axis.blur[0]) * loadAt(middle);
            for (int t = 1; t <= radius; ++t)
                sum += F(axis.blur[t]) * (loadAt(middle - t) + loadAt(middle + t));
            store(sum, result + x + i);
        }
    }
}

void reduceAcross(const GaussianAxis& axis, const float* row, int width, float* result, int reducedWidth)
{
    if (axis.factor == 1) {
        std::copy_n(row, width, result);
        return;
    }
    const int taps = static_cast<int>(axis.reduce.size());
    const int lead = (taps - axis.factor) / 2;
    for (int x = 0; x < reducedWidth; ++x) {
        float sum = 0.0f;
        const int first = x * axis.factor - lead;
        const bool inner = first >= 0 && first + taps <= width;
        for (int t = 0; t < taps; ++t)
            sum += axis.reduce[t] * row[inner ? first + t : wrapped(first + t, width)];
        result[x] = sum;
    }
}

/// First reduced pixel that the four expanding taps of place `phase` use, against the reduced pixel it lies
/// in.
HWY_INLINE int firstTap(int phase, int factor)
{
    return 2 * phase + 1 < factor ? -2 : -1;
}

void expandAcross(const GaussianAxis& axis, const float* row, int reducedWidth, float* result)
{
    if (axis.factor == 1) {
        std::copy_n(row, reducedWidth, result);
        return;
    }
    for (int x = 0; x < reducedWidth; ++x) {
        float around[5];
        for (int t = 0; t < 5; ++t)
            around[t] = row[wrapped(x + t - 2, reducedWidth)];
        float* places = result + static_cast<std::ptrdiff_t>(x) * axis.factor;
        for (int phase = 0; phase < axis.factor; ++phase) {
            const float* from = around + 2 + firstTap(phase, axis.factor);
            const float* w = axis.expand.data() + 4 * phase;
            places[phase] = (w[0] * from[0] + w[1] * from[1]) + (w[2] * from[2] + w[3] * from[3]);
        }
    }
}

void reduceDown(const GaussianAxis& axis, const ImageView& source, int channel, int y, float* result)
{
    if (axis.factor == 1) {
        std::copy_n(rowOf(source, channel, y), source.width, result);
        return;
    }
    const int taps = static_cast<int>(axis.reduce.size());
    sumRows(source, channel, y * axis.factor - (taps - axis.factor) / 2, axis.reduce.data(), taps,
            source.width, result);
}

void expandDown(const GaussianAxis& axis, const ImageView& source, int channel, int y, float* result)
{
    const int phase = y % axis.factor;
    if (axis.factor == 1)
        std::copy_n(rowOf(source, channel, y), source.width, result);
    else
        sumRows(source, channel, y / axis.factor + firstTap(phase, axis.factor),
                axis.expand.data() + 4 * phase, 4, source.width, result);
}

void gaussianBand(const GaussianPlan& plan, int pass, const ImageView& source, const MutableImage& result,
                  int y0, int y1)
{
    const int step = plan.reduced() ? pass : pass + 2;
    for (int c = 0; c < result.channels; ++c) {
        for (int y = y0; y < y1; ++y) {
            const float* row = source.planes[c] + y * source.stride; // of passes that keep rows
            float* to = rowOf(result, c, y);
            switch (step) {
            case 0:
                reduceDown(plan.y, source, c, y, to);
                break;
            case 1:
                reduceAcross(plan.x, row, source.width, to, result.width);
                break;
            case 2:
                blurAcross(plan.x, row, source.width, to);
                break;
            case 3:
                blurDown(plan.y, source, c, y, to);
                break;
            case 4:
                expandAcross(plan.x, row, source.width, to);
                break;
            default:
                expandDown(plan.y, source, c, y, to);
                break;
            }
        }
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

HWY_EXPORT(gaussianBand);

namespace {

/// Normalised samples of a Gaussian at offset, offset + 1...
std::vector<float> gaussianTaps(float sigma, float offset, int count, bool bothSides)
{
    std::vector<float> taps(count);
    float sum = 0.0f;
    for (int t = 0; t < count; ++t) {
        const float x = (offset + static_cast<float>(t)) / sigma;
        taps[t] = scalar::expOf(-0.5f * x * x);
        sum += bothSides && t > 0 ? 2.0f * taps[t] : taps[t];
    }
    for (float& tap : taps)
        tap /= sum;
    return taps;
}

/// A cubic B-spline's weights at the middle of each of `factor` places of a reduced pixel.
std::vector<float> splineTaps(int factor)
{
    std::vector<float> taps;
    for (int phase = 0; phase < factor; ++phase) {
        const float place = (static_cast<float>(phase) + 0.5f) / static_cast<float>(factor) - 0.5f;
        const float t = place < 0.0f ? place + 1.0f : place, s = 1.0f - t;
        taps.insert(taps.end(), {s * s * s / 6.0f, (4.0f - 6.0f * t * t + 3.0f * t * t * t) / 6.0f,
                                 (4.0f - 6.0f * s * s + 3.0f * s * s * s) / 6.0f, t * t * t / 6.0f});
    }
    return taps;
}

GaussianAxis planAxis(float sigma, int size)
{
    GaussianAxis axis;
    const float wanted = sigma > 0.0f ? std::min(sigma, static_cast<float>(size)) : 0.0f;
    while (wanted >= 6.0f * static_cast<float>(axis.factor) && size % (2 * axis.factor) == 0)
        axis.factor *= 2;
    float rest = wanted;
    if (axis.factor > 1) {
        const auto factor = static_cast<float>(axis.factor);
        const float first = 0.75f * factor;
        axis.reduce = gaussianTaps(first, 0.5f - 3.0f * factor, 6 * axis.factor, false);
        axis.expand = splineTaps(axis.factor);
        rest = scalar::sqrtOf(wanted * wanted - first * first - factor * factor / 3.0f) / factor;
    }
    const int radius = std::min(static_cast<int>(4.0f * rest) + 1, kMaxRadius);
    axis.blur = rest < 0.05f ? std::vector<float>{1.0f} : gaussianTaps(rest, 0.0f, radius + 1, true);
    return axis;
}

} // namespace

GaussianPlan planGaussian(float sigmaX, float sigmaY, int width, int height)
{
    return {planAxis(sigmaX, width), planAxis(sigmaY, height)};
}

std::vector<ScratchShape> gaussianScratch(const GaussianPlan& plan, int width, int height, int channels)
{
    if (!plan.reduced())
        return {{width, height, channels}};
    const int reducedWidth = width / plan.x.factor, reducedHeight = height / plan.y.factor;
    const ScratchShape small{reducedWidth, reducedHeight, channels}, wide{width, reducedHeight, channels};
    return {wide, small, small, small, wide};
}

void runGaussian(const GaussianPlan& plan, int pass, const ImageView& source, const MutableImage& result,
                 int y0, int y1)
{
    HWY_DYNAMIC_DISPATCH(gaussianBand)(plan, pass, source, result, y0, y1);
}

} // namespace vellor::nodes
#endif
