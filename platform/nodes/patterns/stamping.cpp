// Draws the stamps of a StampState. Each row goes through the stamps that touch it, in their order, and
// through the pixels that each covers.

#include "platform/nodes/dispatch.h"
#include "platform/nodes/patterns/stamps.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/patterns/stamping.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/shapes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

/// The two pixels, or of odd sizes three, that one pixel of a halved picture covers, and how much of each.
struct HalfTaps
{
    int first;
    float weights[3];
    HalfTaps(int i, int size) : first(2 * i), weights{0.5f, 0.5f, 0.0f}
    {
        const int half = size / 2;
        if (size % 2 == 0)
            return;
        const float share = 1.0f / static_cast<float>(size);
        weights[0] = static_cast<float>(half - i) * share;
        weights[1] = static_cast<float>(half) * share;
        weights[2] = static_cast<float>(i + 1) * share;
    }
};

/// The mean of what a pixel of the halved picture covers. Colours count as much as they cover.
void halvePixel(const ImageView& source, const MutableImage& result, int x, int y)
{
    const HalfTaps across(x, source.width), down(y, source.height);
    float sums[kMaxChannels] = {}, plain[kMaxChannels] = {};
    const int countX = source.width % 2 == 0 ? 2 : 3, countY = source.height % 2 == 0 ? 2 : 3;
    for (int j = 0; j < countY; ++j) {
        for (int i = 0; i < countX; ++i) {
            const std::ptrdiff_t at = (down.first + j) * source.stride + across.first + i;
            const float weight = across.weights[i] * down.weights[j];
            const float alpha = result.channels > 1 ? weight * source.planes[3][at] : weight;
            for (int c = 0; c < result.channels; ++c) {
                sums[c] += alpha * source.planes[c][at];
                plain[c] += weight * source.planes[c][at];
            }
        }
    }
    for (int c = 0; c < result.channels; ++c) {
        const bool weighted = result.channels > 1 && c < 3 && plain[3] > 1e-6f;
        rowOf(result, c, y)[x] = weighted ? sums[c] / plain[3] : plain[c];
    }
}

/// What a stamp shows at some pixels.
template<int channels> struct Shown
{
    F colour[channels]; // already times cover
    F cover;            // 0 to 1
};

/// The share of a pixel, 1 wide and `at` away from the middle of a bar, that the bar covers.
HWY_INLINE F barCover(F at, float half)
{
    const F away = absOf(at);
    return maxOf(minOf(away + F(0.5f), F(half)) - maxOf(away - F(0.5f), F(-half)), F(0.0f));
}

/// The four pixels around a place in a picture that does not go around.
struct ClampedTaps
{
    U at[4];
    F weight[4];
    HWY_INLINE ClampedTaps(const ImageView& image, F u, F v)
    {
        const F lastX(static_cast<float>(image.width - 1)), lastY(static_cast<float>(image.height - 1));
        const F x = clampOf(u * F(static_cast<float>(image.width)) - F(0.5f), F(0.0f), lastX);
        const F y = clampOf(v * F(static_cast<float>(image.height)) - F(0.5f), F(0.0f), lastY);
        const F left = floorOf(x), top = floorOf(y);
        const F fx = x - left, fy = y - top;
        const U x0 = toInteger(left), x1 = toInteger(minOf(left + F(1.0f), lastX));
        const U stride(static_cast<std::uint32_t>(image.stride));
        const U y0 = toInteger(top) * stride, y1 = toInteger(minOf(top + F(1.0f), lastY)) * stride;
        at[0] = y0 + x0;
        at[1] = y0 + x1;
        at[2] = y1 + x0;
        at[3] = y1 + x1;
        weight[0] = (F(1.0f) - fx) * (F(1.0f) - fy);
        weight[1] = fx * (F(1.0f) - fy);
        weight[2] = (F(1.0f) - fx) * fy;
        weight[3] = fx * fy;
    }
    HWY_INLINE F read(const float* plane) const
    {
        const F upper = gather(plane, at[0]) * weight[0] + gather(plane, at[1]) * weight[1];
        return upper + (gather(plane, at[2]) * weight[2] + gather(plane, at[3]) * weight[3]);
    }
    /// Weighs the pixels by the given plane as well; from then on read() gives products with it.
    HWY_INLINE F weighBy(const float* plane)
    {
        F sum(0.0f);
        for (int i = 0; i < 4; ++i) {
            weight[i] = weight[i] * clampOf(gather(plane, at[i]), F(0.0f), F(1.0f));
            sum += weight[i];
        }
        return sum;
    }
};

/// One stamp on one row.
template<int channels> class StampReader
{
public:
    StampReader(const StampState& state, const AreaJob& job, const StampCopy& copy)
        : m_state(state), m_stamp(state.stamps[copy.stamp]),
          m_colour(state.colours.empty() ? nullptr : state.colours[copy.stamp].data()),
          m_reachX(drawnHalf(m_stamp.halfX) + 0.5f), m_reachY(drawnHalf(m_stamp.halfY) + 0.5f),
          m_scaleX(1.0f / drawnHalf(m_stamp.halfX)), m_scaleY(1.0f / drawnHalf(m_stamp.halfY))
    {
        if (state.pictures > 0)
            m_picture = m_stamp.level > 0 ? job.scratch[state.scratchOf(m_stamp.picture, m_stamp.level)]
                                          : job.operands[state.operand[m_stamp.picture]];
    }

    /// (x, y) is the place in the stamp in pixels from its middle.
    HWY_INLINE Shown<channels> at(F x, F y) const
    {
        return m_state.pictures > 0 ? pictureAt(x, y) : shapeAtPixel(x, y);
    }

private:
    HWY_INLINE Shown<channels> pictureAt(F x, F y) const
    {
        const F edge = barCover(x, m_stamp.halfX) * barCover(y, m_stamp.halfY);
        ClampedTaps taps(m_picture, x * F(0.5f * m_scaleX) + F(0.5f), y * F(0.5f * m_scaleY) + F(0.5f));
        Shown<channels> shown;
        const F tone = edge * F(m_stamp.value);
        if constexpr (channels == 1) {
            const F value = taps.read(m_picture.planes[0]);
            shown.colour[0] = value * tone;
            shown.cover = clampOf(value * edge * F(1.0f / m_state.opaque), F(0.0f), F(1.0f));
        } else {
            shown.cover = taps.weighBy(m_picture.planes[3]) * edge;
            F colour[3];
            for (int c = 0; c < 3; ++c)
                colour[c] = taps.read(m_picture.planes[c]) * tone;
            for (int c = 0; c < 3; ++c)
                shown.colour[c] =
                    m_colour ? maxOf(colour[0] * F(m_colour[3 * c]) + colour[1] * F(m_colour[3 * c + 1]) +
                                         colour[2] * F(m_colour[3 * c + 2]),
                                     F(0.0f))
                             : colour[c];
            shown.colour[3] = shown.cover;
        }
        return shown;
    }

    HWY_INLINE Shown<channels> shapeAtPixel(F px, F py) const
    {
        const F x = px * F(m_scaleX), y = py * F(m_scaleY);
        const ShapeOutline& shape = m_state.shape;
        const F inside = insideOf(shape, x, y);
        // How fast the distance changes from a pixel to the next, also where the shape is stretched.
        const F dx = insideOf(shape, x + F(m_scaleX), y) - inside;
        const F dy = insideOf(shape, x, y + F(m_scaleY)) - inside;
        const F step = maxOf(sqrtOf(dx * dx + dy * dy), F(1e-6f));
        const bool relief = shape.kind >= ShapeKind::Bell;
        const float softness = relief ? 0.0f : shape.softness;
        const F t = clampOf((inside + F(0.5f) * step) / (F(softness) + step), F(0.0f), F(1.0f));
        // What is smaller than a pixel is drawn as large as one, and fainter.
        const F small(std::min(2.0f * m_stamp.halfX, 1.0f) * std::min(2.0f * m_stamp.halfY, 1.0f));
        // The slope is steeper than the edge at the tips of thin shapes, so the box ends them: what a pixel
        // shows must not depend on which others are in its vector.
        const F box = clampOf(minOf(F(m_reachX) - absOf(px), F(m_reachY) - absOf(py)), F(0.0f), F(1.0f));
        Shown<channels> shown;
        shown.cover = minOf(softness > 0.0f ? t * t * (F(3.0f) - F(2.0f) * t) : t, box) * small;
        const float tone =
            m_stamp.value * (channels > 1 && m_colour ? m_colour[0] + m_colour[1] + m_colour[2] : 1.0f);
        const F value = (relief ? shapeAt(shape, x, y, F(1.0f)) * small : shown.cover) * F(tone);
        for (int c = 0; c < channels; ++c)
            shown.colour[c] = value;
        if constexpr (channels > 1)
            shown.colour[3] = shown.cover;
        return shown;
    }

    const StampState& m_state;
    const Stamp& m_stamp;
    const float* m_colour;
    float m_reachX, m_reachY, m_scaleX, m_scaleY;
    ImageView m_picture;
};

struct Span
{
    int first = 0, last = -1;
};

/// The pixels of a row, y pixels below the stamp's middle, that the stamp may touch.
Span spanOf(const StampState& state, const Stamp& stamp, float x, float y)
{
    float low = -1e6f, high = 1e6f;
    // |across * dx + offset| stays below reach.
    const auto limit = [&](float across, float offset, float reach) {
        if (scalar::absOf(across) < 1e-5f) {
            if (scalar::absOf(offset) > reach + 1.0f)
                high = low - 1.0f;
            return;
        }
        const float a = (-reach - offset) / across, b = (reach - offset) / across;
        low = std::max(low, std::min(a, b));
        high = std::min(high, std::max(a, b));
    };
    limit(stamp.cosine, y * stamp.sine, drawnHalf(stamp.halfX) + 1.0f);
    limit(-stamp.sine, y * stamp.cosine, drawnHalf(stamp.halfY) + 1.0f);
    Span span;
    if (low > high)
        return span;
    const float width = static_cast<float>(state.width);
    span.first = static_cast<int>(std::min(std::max(x + low - 1.5f, 0.0f), width));
    span.last = static_cast<int>(std::min(std::max(x + high + 0.5f, -1.0f), width - 1.0f));
    return span;
}

/// Calls put(i, shown, place in the stamp x, y) for vectors of pixels from i on that a stamp touches, stamp
/// by stamp. offsetX and offsetY move the pixels' centres.
template<int channels, class Put>
HWY_INLINE void drawRow(const StampState& state, const AreaJob& job, int row, float offsetX, float offsetY,
                        const Put& put)
{
    const std::size_t bin = static_cast<std::size_t>(row / kStampRows);
    for (std::uint32_t e = state.starts[bin]; e < state.starts[bin + 1] && !job.stopped(); ++e) {
        const StampCopy& copy = state.copies[state.entries[e]];
        const Stamp& stamp = state.stamps[copy.stamp];
        const float dy = static_cast<float>(row) + (0.5f + offsetY) - copy.y;
        const Span span = spanOf(state, stamp, copy.x, dy);
        if (span.first > span.last)
            continue;
        const StampReader<channels> reader(state, job, copy);
        const F down(dy * stamp.sine), along(dy * stamp.cosine);
        for (int i = span.first / kLanes * kLanes; i <= span.last; i += kLanes) {
            const F dx = countFrom(static_cast<float>(i)) + F(0.5f + offsetX) - F(copy.x);
            const F x = dx * F(stamp.cosine) + down, y = along - dx * F(stamp.sine);
            put(i, reader.at(x, y), stamp, x, y);
        }
    }
}

/// The background times its cover.
template<int channels>
void fillBackground(const StampState& state, const AreaJob& job, int row, float* const* planes)
{
    const ImageView& background = job.operands[0];
    for (int i = 0; i < job.result.width; i += kLanes) {
        F cover(1.0f);
        if constexpr (channels > 1) {
            cover = clampOf(background.channels > 0 ? load(rowOf(background, 3, row) + i)
                                                    : F(state.background[3]),
                            F(0.0f), F(1.0f));
            store(cover, planes[3] + i);
        }
        for (int c = 0; c < (channels > 1 ? 3 : 1); ++c)
            store((background.channels > 0 ? load(rowOf(background, c, row) + i) : F(state.background[c])) *
                      cover,
                  planes[c] + i);
    }
}

template<int channels> void pictureRow(const StampState& state, const AreaJob& job, int row)
{
    float* planes[kMaxChannels] = {};
    for (int c = 0; c < channels; ++c)
        planes[c] = rowOf(job.result, c, row);
    fillBackground<channels>(state, job, row, planes);
    drawRow<channels>(state, job, row, 0.0f, 0.0f,
                      [&](int i, const Shown<channels>& shown, const Stamp&, F, F) {
                          const M touched = shown.cover > F(0.0f);
                          for (int c = 0; c < channels; ++c) {
                              const F below = load(planes[c] + i);
                              F value;
                              if (state.blend == StampBlend::Over || c == 3)
                                  value = below * (F(1.0f) - shown.cover) + shown.colour[c];
                              else if (state.blend == StampBlend::Add)
                                  value = below + shown.colour[c];
                              else
                                  value = maxOf(below, shown.colour[c]);
                              store(choose(touched, value, below), planes[c] + i);
                          }
                      });
    if constexpr (channels > 1) {
        for (int i = 0; i < job.result.width; i += kLanes) {
            const F cover = load(planes[3] + i);
            const F share = F(1.0f) / choose(cover > F(0.0f), cover, F(1.0f));
            for (int c = 0; c < 3; ++c)
                store(load(planes[c] + i) * share, planes[c] + i);
        }
    }
}

/// The part of a stamp's number at some pixels.
HWY_INLINE F numberOf(const StampState& state, const Stamp& stamp, F x, F y)
{
    switch (state.output) {
    case StampOutput::Random:
        return F(stamp.random);
    case StampOutput::U:
        return clampOf(x * F(0.5f / stamp.halfX) + F(0.5f), F(0.0f), F(1.0f));
    case StampOutput::V:
        return clampOf(y * F(0.5f / stamp.halfY) + F(0.5f), F(0.0f), F(1.0f));
    default:
        return F(1.0f);
    }
}

/// How light what is shown is, for max: the mean of its colours.
template<int channels> HWY_INLINE F lightOf(const F* colour)
{
    if constexpr (channels == 1)
        return colour[0];
    else
        return (colour[0] + colour[1] + colour[2]) * F(1.0f / 3.0f);
}

/// Numbers of the stamps that show. Where the lighter shows there is one stamp to each place, so that four
/// places in each pixel make smooth borders.
template<int channels>
void numberRow(const StampState& state, const AreaJob& job, int row, float* const* planes)
{
    constexpr float kSamples[4][2] = {
        {-0.375f, -0.125f}, {0.125f, -0.375f}, {0.375f, 0.125f}, {-0.125f, 0.375f}};
    const bool picked = state.blend == StampBlend::Max && state.output != StampOutput::Mask;
    const int samples = picked ? 4 : 1;
    float* number = rowOf(job.result, 0, row);
    float* current = planes[kMaxChannels];
    float* lightest = planes[kMaxChannels + 1];
    const int width = job.result.width;
    std::fill(number, number + width, 0.0f);
    for (int s = 0; s < samples; ++s) {
        std::fill(current, current + width, 0.0f);
        fillBackground<channels>(state, job, row, planes);
        for (int i = 0; i < width; i += kLanes) {
            F colour[channels];
            for (int c = 0; c < channels; ++c)
                colour[c] = load(planes[c] + i);
            store(lightOf<channels>(colour), lightest + i);
        }
        const float offsetX = picked ? kSamples[s][0] : 0.0f, offsetY = picked ? kSamples[s][1] : 0.0f;
        drawRow<channels>(state, job, row, offsetX, offsetY,
                          [&](int i, const Shown<channels>& shown, const Stamp& stamp, F x, F y) {
                              const F below = load(current + i), value = numberOf(state, stamp, x, y);
                              const M touched = shown.cover > F(0.0f);
                              if (!picked)
                                  return store(choose(touched, lerpOf(below, value, shown.cover), below),
                                               current + i);
                              const F level = lightOf<channels>(shown.colour), before = load(lightest + i);
                              const M wins = touched & (level > before);
                              store(choose(wins, value, below), current + i);
                              store(choose(wins, level, before), lightest + i);
                          });
        for (int i = 0; i < width; i += kLanes)
            store(load(number + i) + load(current + i) * F(1.0f / static_cast<float>(samples)), number + i);
    }
}

template<int channels> void numberRows(const StampState& state, const AreaJob& job)
{
    const std::size_t stride = (static_cast<std::size_t>(job.result.width) + 31) / 16 * 16;
    std::vector<float> memory(stride * (kMaxChannels + 2) + 16);
    const std::size_t misaligned = reinterpret_cast<std::uintptr_t>(memory.data()) / sizeof(float) % 16;
    float* planes[kMaxChannels + 2];
    for (int i = 0; i < kMaxChannels + 2; ++i)
        planes[i] = memory.data() + (16 - misaligned) % 16 + stride * static_cast<std::size_t>(i);
    for (int y = job.y0; y < job.y1; ++y) {
        numberRow<channels>(state, job, y, planes);
        if constexpr (channels > 1) {
            const float* number = rowOf(job.result, 0, y);
            std::copy_n(number, job.result.width, rowOf(job.result, 1, y));
            std::copy_n(number, job.result.width, rowOf(job.result, 2, y));
            std::fill_n(rowOf(job.result, 3, y), job.result.width, 1.0f);
        }
    }
}

template<int channels> void drawStamps(const StampState& state, const AreaJob& job)
{
    if (state.output != StampOutput::Picture)
        return numberRows<channels>(state, job);
    for (int y = job.y0; y < job.y1; ++y)
        pictureRow<channels>(state, job, y);
}

void stampArea(const AreaJob& job)
{
    const auto& state = static_cast<const StampState&>(*job.state);
    int pass = job.pass;
    for (int picture = 0; picture < state.pictures; ++picture) {
        for (int level = 1; level <= state.levels[picture]; ++level) {
            if (pass-- != 0)
                continue;
            const ImageView& source = level > 1 ? job.scratch[state.scratchOf(picture, level - 1)]
                                                : job.operands[state.operand[picture]];
            for (int y = job.y0; y < job.y1; ++y)
                for (int x = 0; x < job.result.width; ++x)
                    halvePixel(source, job.result, x, y);
            return;
        }
    }
    if (job.result.channels > 1)
        drawStamps<4>(state, job);
    else
        drawStamps<1>(state, job);
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(stampArea)

void runStamps(const AreaJob& job)
{
    runstampArea(job);
}

} // namespace vellor::nodes
#endif
