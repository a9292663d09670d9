#include "platform/nodes/neighbourhood/directedgaussian.h"

#include "platform/nodes/dispatch.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

#include <algorithm>
#include <cmath>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/neighbourhood/directedgaussian.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/sampling-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void directedRow(const DirectedGaussian& gaussian, const ImageView& source, const float* widths,
                 const float* directions, int y, const MutableImage& result)
{
    const F v(centreOf(y, result.height));
    const F perWidth(gaussian.sigma / static_cast<float>(result.width));
    const F perHeight(gaussian.sigma / static_cast<float>(result.height));
    for (int x = 0; x < result.width; x += kLanes) {
        const F u = centresFrom(x, result.width);
        const F wide = clampOf(load(widths + x), F(0.0f), F(1.0f));
        const F turns = F(gaussian.turns) + (directions ? load(directions + x) : F(0.0f));
        const SinCos way = sinCosOfTurns(turns);
        const F dx = way.cosine * wide * perWidth, dy = way.sine * wide * perHeight;
        F sums[kMaxChannels] = {F(0.0f), F(0.0f), F(0.0f), F(0.0f)};
        for (std::size_t i = 0; i < gaussian.places.size(); ++i) {
            const F place(gaussian.places[i]), weight(gaussian.weights[i]);
            const BilinearTaps taps(source, u + dx * place, v + dy * place);
            for (int c = 0; c < result.channels; ++c)
                sums[c] += taps.read(source.planes[c]) * weight;
        }
        for (int c = 0; c < result.channels; ++c)
            store(sums[c], rowOf(result, c, y) + x);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

HWY_EXPORT(directedRow);

DirectedGaussian planDirectedGaussian(float sigma, float sigmaBefore, float turns)
{
    DirectedGaussian gaussian;
    gaussian.sigma = sigma;
    gaussian.turns = turns;
    // Three deviations on each side, a deviation and a half of the Gaussian before, or a pixel, from one to
    // the next.
    const float step = std::max(1.5f * sigmaBefore, 1.0f);
    const int beside = std::clamp(static_cast<int>(std::ceil(3.0f * sigma / step)), 1, 32);
    double sum = 0.0, variance = 0.0;
    for (int i = -beside; i <= beside; ++i) {
        const double place = 3.0 * i / beside,
                     weight = scalar::expOf(static_cast<float>(-0.5 * place * place));
        gaussian.places.push_back(static_cast<float>(place));
        gaussian.weights.push_back(static_cast<float>(weight));
        sum += weight;
        variance += weight * place * place;
    }
    // What the samples lack at the ends, their places make up for.
    const auto spread = static_cast<float>(std::sqrt(sum / variance));
    for (float& place : gaussian.places)
        place *= spread;
    for (float& weight : gaussian.weights)
        weight = static_cast<float>(weight / sum);
    return gaussian;
}

void runDirectedGaussian(const DirectedGaussian& gaussian, const ImageView& source, const ImageView& widths,
                         const ImageView& directions, const AreaJob& job)
{
    for (int y = job.y0; y < job.y1 && !job.stopped(); ++y)
        HWY_DYNAMIC_DISPATCH(directedRow)
    (gaussian, source, rowOf(widths, 0, y), directions.channels ? rowOf(directions, 0, y) : nullptr, y,
     job.result);
}

} // namespace vellor::nodes
#endif
