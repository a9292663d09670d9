#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rowbuffer.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

#include <cstdlib>

// Light from the whole sky, weighed by the cosine: in each of some directions, what is above the horizon
// gives cos^2 of the horizon's angle, which is 1 / (1 + t^2) with t the steepest rise towards any place in
// that direction. Places lie on rings whose distances grow.
//
// The farther a ring, the smoother and the smaller the copy of the height map that it reads, and the fewer
// the pixels that ask it: the near rings are asked for each pixel, the middle ones for each of a copy of half
// the size, the far ones for each of a quarter. Seen from height h, a place of height s rises by k (s - h): a
// line over h. So a pixel of a smaller copy keeps the line of the place that rises most steeply over it, as
// k s and k, and the pixels of the next larger copy read the lines between the four around them at their own
// heights: what is far away is mixed, but never the height that it is seen from.
//
// A copy is half as large along an axis whose size is even, and as large where it is odd, so that everything
// still meets at the edges.

#ifndef VELLOR_AMBIENTOCCLUSION_STATE
#define VELLOR_AMBIENTOCCLUSION_STATE
namespace vellor::nodes {
namespace {

constexpr int kDirections = 16;
constexpr int kNearReach = 8; // pixels to any side that the near rings read
constexpr int kLineMargin = 16;
constexpr int kLines = 2 * kDirections;
constexpr int kStrip = 256; // pixels whose lines stay in the first cache

/// Scratch images, by pass: the half copy; the quarter copy, its smooth form, which the first of the far
/// rings read, and its smoothest.
enum OcclusionPass
{
    kHalf,
    kQuarter,
    kSmooth,
    kSmoothest,
    kLight
};

struct OcclusionSample
{
    int dx = 0, dy = 0;     // in pixels of its copy
    int pass = kHalf;       // that writes the copy; the near ones' is the height map
    float steepness = 0.0f; // factor from a difference in height to a rise
};

using OcclusionRings = std::array<std::vector<OcclusionSample>, kDirections>;

/// A copy of the height map, how much smaller than the next larger one it is along each axis, and the rings
/// that its pixels ask.
struct OcclusionLevel
{
    int width = 0, height = 0;
    int stepX = 1, stepY = 1;
    int reach = 0; // the farthest sample to either side, in whole vectors
    OcclusionRings rings;
};

struct OcclusionState : State
{
    OcclusionRings near;
    OcclusionLevel half, quarter;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/surface/ambientocclusion.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

constexpr int kBlockVectors = 4;
constexpr int kBlock = kBlockVectors * kLanes;

/// A copy with what lies around it: pixel (0, y) stands `margin` floats into its row.
struct Copy
{
    ImageView image;
    int margin = 0, width = 0;

    const float* row(int y) const { return rowOf(image, 0, y) + margin; }
};

Copy copyOf(const OcclusionState& state, const AreaJob& job, int pass)
{
    const OcclusionLevel& level = pass == kHalf ? state.half : state.quarter;
    return {job.scratch[pass], level.reach, level.width};
}

/// Smooths with weights 1, 3, 3, 1 between pixels and takes every second, or with 1, 2, 1 around pixels
/// `spread` apart, along each axis.
struct Smoothing
{
    int stepX = 1, stepY = 1, spreadX = 1, spreadY = 1;
};

HWY_INLINE F smoothed(F a, F b, F c)
{
    return (a + c) * F(0.25f) + b * F(0.5f);
}

HWY_INLINE F halved(F a, F b, F c, F d)
{
    return (a + d) * F(0.125f) + (b + c) * F(0.375f);
}

/// Row y of the smoothed picture, and whole vectors beyond it; `column` has room for the source's width and
/// `kBlock` pixels to either side.
void smoothRow(const Copy& source, const Smoothing& by, int y, int width, float* column, float* result)
{
    constexpr int kAround = kBlock;
    float* const inside = column + kAround;
    const auto row = [&](int down) { return source.row(by.stepY * y + down); };
    const float* const rows[4] = {row(-by.spreadY), row(0), row(by.spreadY), row(2)};
    for (int i = 0; i < source.width; i += kLanes) {
        const F a = loadAt(rows[0] + i), b = loadAt(rows[1] + i), c = loadAt(rows[2] + i);
        store(by.stepY == 2 ? halved(a, b, c, loadAt(rows[3] + i)) : smoothed(a, b, c), inside + i);
    }
    copyWrapped(inside, source.width, -kLanes, kLanes, inside - kLanes);
    copyWrapped(inside, source.width, source.width, 3 * kLanes, inside + source.width);
    for (int i = 0; i < width; i += kLanes) {
        const float* const at = inside + by.stepX * i;
        if (by.stepX == 2) {
            F a, b, c, d;
            hn::LoadInterleaved2(FloatTag(), at - 1, a.v, b.v);
            hn::LoadInterleaved2(FloatTag(), at + 1, c.v, d.v);
            storeAt(halved(a, b, c, d), result + i);
        } else
            storeAt(smoothed(loadAt(at - by.spreadX), loadAt(at), loadAt(at + by.spreadX)), result + i);
    }
}

/// Writes rows of a copy, with what lies around them.
void smoothBand(const Copy& source, const Smoothing& by, int width, int margin, const AreaJob& job)
{
    RowBuffer column(std::size_t(source.width) + 2 * kBlock);
    RowBuffer line(std::size_t(width) + kLanes);
    for (int y = job.y0; y < job.y1; ++y) {
        smoothRow(source, by, y, width, column.data(), line.data());
        copyWrapped(line.data(), width, -margin, job.result.width, rowOf(job.result, 0, y));
    }
}

/// A block of pixels' heights: in order, and even and odd pixels apart.
struct Heights
{
    F all[kBlockVectors], even[kBlockVectors / 2], odd[kBlockVectors / 2];

    HWY_INLINE explicit Heights(const float* heights)
    {
        for (int k = 0; k < kBlockVectors; ++k)
            all[k] = loadAt(heights + k * kLanes);
        for (int k = 0; k < kBlockVectors / 2; ++k)
            hn::LoadInterleaved2(FloatTag(), heights + 2 * k * kLanes, even[k].v, odd[k].v);
    }
};

/// What a sample reads in a row: add x.
struct Ray
{
    const float* seen;
    float steepness;
};

/// Rays, direction after direction, and where each direction's end.
struct Rays
{
    std::vector<Ray> all;
    std::array<std::size_t, kDirections> ends{};
};

/// The lines of a row of a copy: for each direction k s and k of what rises most steeply, from pixel -1 on.
class LineRow
{
public:
    /// `floats` has room for sizeOf(width), and stays the caller's.
    LineRow(int width, float* floats) : m_pitch(pitchOf(width)), m_width(width), m_floats(floats) {}
    static std::size_t sizeOf(int width) { return std::size_t(pitchOf(width)) * kLines; }
    /// Pixel 0 of a line: number 2 d is k s, 2 d + 1 is k of direction d.
    float* line(int number) { return m_floats + std::size_t(number) * m_pitch + kLineMargin; }
    void wrap()
    {
        for (int i = 0; i < kLines; ++i) {
            line(i)[-1] = line(i)[m_width - 1];
            line(i)[m_width] = line(i)[0];
        }
    }

private:
    static int pitchOf(int width) { return (width + kStrip + 2 * kLineMargin + 15) / 16 * 16; }

    int m_pitch, m_width;
    float* m_floats;
};

/// The lines of a copy between whose pixels those of the next larger one lie.
class Lines
{
public:
    Lines(const OcclusionState& state, const AreaJob& job, int pass)
        : m_level(pass == kHalf ? state.half : state.quarter), m_here(copyOf(state, job, pass)),
          m_floats(2 * LineRow::sizeOf(m_level.width)), m_rows{LineRow(m_level.width, m_floats.data()),
                                                               LineRow(m_level.width,
                                                                       m_floats.data() +
                                                                           LineRow::sizeOf(m_level.width))},
          m_strip(std::size_t(kLines) * kStripPitch)
    {
        for (int d = 0; d < kDirections; ++d) {
            for (const OcclusionSample& sample : m_level.rings[d])
                m_samples.push_back({sample, copyOf(state, job, sample.pass)});
            m_rays.ends[d] = m_samples.size();
        }
        m_rays.all.resize(m_samples.size());
        if (pass == kHalf && !state.quarter.rings[0].empty())
            m_coarser = std::make_unique<Lines>(state, job, kSmooth);
    }

    /// Goes to row y of the next larger copy.
    void seekRow(int y)
    {
        const bool halves = m_level.stepY == 2;
        const int upper = halves ? (y + 1) / 2 - 1 : y;
        m_weight = halves ? (y % 2 == 0 ? 0.75f : 0.25f) : 0.0f;
        m_upper = &row(upper);
        m_lower = halves ? &row(upper + 1) : m_upper;
    }

    /// Goes to the kStrip pixels of that row from x on.
    void seekStrip(int x)
    {
        // Even pixels are three quarters of their own one and a quarter of the one before.
        const float scale = m_level.stepX == 2 ? 0.25f : 1.0f;
        const F above(scale * (1.0f - m_weight)), below(scale * m_weight);
        const int from = x / m_level.stepX - 1, count = kStrip / m_level.stepX + 2;
        for (int i = 0; i < kLines; ++i) {
            const float *const upper = m_upper->line(i) + from, *const lower = m_lower->line(i) + from;
            float* const strip = m_strip.data() + i * kStripPitch;
            for (int k = 0; k < count; k += kLanes)
                store(loadAt(upper + k) * above + loadAt(lower + k) * below, strip + k);
        }
    }

    /// How steeply the lines of a block of pixels rise, `x` pixels into the strip, and their k.
    HWY_INLINE void read(int direction, int x, const Heights& here, float* rises, float* slopes) const
    {
        const float* const rise = m_strip.data() + 2 * direction * kStripPitch + x / m_level.stepX;
        const float* const slope = rise + kStripPitch;
        if (m_level.stepX == 1) {
            for (int k = 0; k < kBlockVectors; ++k) {
                const F steep = loadAt(slope + 1 + k * kLanes);
                store(loadAt(rise + 1 + k * kLanes) - steep * here.all[k], rises + k * kLanes);
                if (slopes)
                    store(steep, slopes + k * kLanes);
            }
            return;
        }
        for (int k = 0; k < kBlockVectors / 2; ++k) {
            F even, odd, steepEven, steepOdd;
            between(rise + k * kLanes, even, odd);
            between(slope + k * kLanes, steepEven, steepOdd);
            even = even - steepEven * here.even[k];
            odd = odd - steepOdd * here.odd[k];
            hn::StoreInterleaved2(even.v, odd.v, FloatTag(), rises + 2 * k * kLanes);
            if (slopes)
                hn::StoreInterleaved2(steepEven.v, steepOdd.v, FloatTag(), slopes + 2 * k * kLanes);
        }
    }

private:
    static constexpr int kStripPitch = kStrip + 3 * 16;
    static constexpr float kUnseen = -1e30f; // a rise below all others

    struct CopySample
    {
        OcclusionSample sample;
        Copy copy;
    };

    static HWY_INLINE void between(const float* quarters, F& even, F& odd)
    {
        const F middle = loadAt(quarters + 1) * F(3.0f);
        even = middle + loadAt(quarters);
        odd = middle + loadAt(quarters + 2);
    }

    LineRow& row(int y)
    {
        const int slot = y & 1;
        if (!m_filled[slot] || m_at[slot] != y) {
            fill(y, m_rows[slot]);
            m_at[slot] = y;
            m_filled[slot] = true;
        }
        return m_rows[slot];
    }

    void fill(int y, LineRow& result)
    {
        const int inside = wrapped(y, m_level.height);
        for (std::size_t i = 0; i < m_samples.size(); ++i) {
            const OcclusionSample& sample = m_samples[i].sample;
            m_rays.all[i] = {m_samples[i].copy.row(inside + sample.dy) + sample.dx, sample.steepness};
        }
        if (m_coarser)
            m_coarser->seekRow(inside);
        const float* const here = m_here.row(inside);
        for (int x = 0; x < m_level.width; x += kBlock) {
            if (m_coarser && x % kStrip == 0)
                m_coarser->seekStrip(x);
            fillBlock(here + x, x, result);
        }
        result.wrap();
    }

    HWY_INLINE void fillBlock(const float* heights, int x, LineRow& result)
    {
        alignas(64) float rises[kBlock], slopes[kBlock];
        const Heights here(heights);
        std::size_t i = 0;
        for (int d = 0; d < kDirections; ++d) {
            F steepest[kBlockVectors], slope[kBlockVectors];
            if (m_coarser)
                m_coarser->read(d, x % kStrip, here, rises, slopes);
            for (int k = 0; k < kBlockVectors; ++k) {
                steepest[k] = m_coarser ? load(rises + k * kLanes) : F(kUnseen);
                slope[k] = m_coarser ? load(slopes + k * kLanes) : F(0.0f);
            }
            for (; i < m_rays.ends[d]; ++i) {
                const float* const seen = m_rays.all[i].seen + x;
                const F factor(m_rays.all[i].steepness);
                for (int k = 0; k < kBlockVectors; ++k) {
                    const F rise = (loadAt(seen + k * kLanes) - here.all[k]) * factor;
                    slope[k] = choose(rise > steepest[k], factor, slope[k]);
                    steepest[k] = maxOf(rise, steepest[k]);
                }
            }
            for (int k = 0; k < kBlockVectors; ++k) {
                store(steepest[k] + slope[k] * here.all[k], result.line(2 * d) + x + k * kLanes);
                store(slope[k], result.line(2 * d + 1) + x + k * kLanes);
            }
        }
    }

    const OcclusionLevel& m_level;
    Copy m_here;
    // Of both rows: the C library keeps one large block for the next band, but gives several back to the
    // system, whose fresh pages then cost a quarter of the time.
    RowBuffer m_floats;
    std::array<LineRow, 2> m_rows; // of even and odd rows
    std::array<int, 2> m_at{};
    std::array<bool, 2> m_filled{};
    std::vector<CopySample> m_samples;
    Rays m_rays; // of the row that is filled
    std::unique_ptr<Lines> m_coarser;
    LineRow *m_upper = nullptr, *m_lower = nullptr;
    float m_weight = 0.0f; // of the lower row
    RowBuffer m_strip;
};

/// A block of pixels, `x` into the strip of lines: the near rings, and the lines of all others. The rays' 0
/// is `shift` pixels to the left.
HWY_INLINE void lightBlock(const Rays& rays, const Lines* lines, const float* heights, int shift, int x,
                           float* result)
{
    // Steeper ones give no light to speak of, and four of their squares can still be multiplied.
    constexpr float kSteepest = 1e4f;
    constexpr int kTogether = 4; // directions whose fractions are added before they are divided
    alignas(64) float rises[kBlock];
    const Heights here(heights);
    F sum[kBlockVectors], numerator[kBlockVectors], denominator[kBlockVectors];
    for (F& light : sum)
        light = F(0.0f);
    std::size_t i = 0;
    for (int group = 0; group < kDirections; group += kTogether) {
        for (int d = group; d < group + kTogether; ++d) {
            F steepest[kBlockVectors];
            if (lines)
                lines->read(d, x, here, rises, nullptr);
            for (int k = 0; k < kBlockVectors; ++k)
                steepest[k] = lines ? maxOf(load(rises + k * kLanes), F(0.0f)) : F(0.0f);
            for (; i < rays.ends[d]; ++i) {
                const float* const seen = rays.all[i].seen + shift;
                const F steepness(rays.all[i].steepness);
                for (int k = 0; k < kBlockVectors; ++k)
                    steepest[k] = maxOf((loadAt(seen + k * kLanes) - here.all[k]) * steepness, steepest[k]);
            }
            for (int k = 0; k < kBlockVectors; ++k) {
                const F t = minOf(steepest[k], F(kSteepest)), below = F(1.0f) + t * t;
                numerator[k] = d == group ? F(1.0f) : numerator[k] * below + denominator[k];
                denominator[k] = d == group ? below : denominator[k] * below;
            }
        }
        for (int k = 0; k < kBlockVectors; ++k)
            sum[k] += numerator[k] / denominator[k];
    }
    for (int k = 0; k < kBlockVectors; ++k)
        store(sum[k] * F(1.0f / kDirections), result + k * kLanes);
}

/// The rows around a block at the picture's edge, copied out.
class EdgeWindow
{
public:
    static constexpr int kPitch = kBlock + 2 * kNearReach + 16;

    void fill(const ImageView& image, int x, int y)
    {
        for (int dy = -kNearReach; dy <= kNearReach; ++dy)
            copyWrapped(rowOf(image, 0, y + dy), image.width, x - kNearReach, kBlock + 2 * kNearReach,
                        m_floats.data() + (dy + kNearReach) * kPitch);
    }
    const float* at(int dx, int dy) const
    {
        return m_floats.data() + (dy + kNearReach) * kPitch + dx + kNearReach;
    }

private:
    std::array<float, kPitch*(2 * kNearReach + 1)> m_floats{};
};

void lightRows(const OcclusionState& state, const AreaJob& job)
{
    const ImageView& image = job.operands[0];
    std::unique_ptr<Lines> lines;
    if (!state.half.rings[0].empty())
        lines = std::make_unique<Lines>(state, job, kHalf);
    EdgeWindow window;
    Rays rays, edgeRays;
    for (int d = 0; d < kDirections; ++d) {
        for (const OcclusionSample& sample : state.near[d])
            edgeRays.all.push_back({window.at(sample.dx, sample.dy), sample.steepness});
        edgeRays.ends[d] = rays.ends[d] = edgeRays.all.size();
    }
    for (int y = job.y0; y < job.y1 && !job.stopped(); ++y) {
        if (lines)
            lines->seekRow(y);
        rays.all.clear();
        for (const auto& direction : state.near)
            for (const OcclusionSample& sample : direction)
                rays.all.push_back({rowOf(image, 0, y + sample.dy) + sample.dx, sample.steepness});
        float* const result = rowOf(job.result, 0, y);
        for (int x = 0; x < job.result.width; x += kBlock) {
            if (lines && x % kStrip == 0)
                lines->seekStrip(x);
            if (x >= kNearReach && x + kBlock + kNearReach <= job.result.width) {
                lightBlock(rays, lines.get(), rowOf(image, 0, y) + x, x, x % kStrip, result + x);
                continue;
            }
            alignas(64) float block[kBlock];
            window.fill(image, x, y);
            lightBlock(edgeRays, lines.get(), window.at(0, 0), 0, x % kStrip, block);
            std::copy_n(block, std::min(kBlock, job.result.width - x), result + x);
        }
    }
}

void occlusionArea(const AreaJob& job)
{
    const auto& state = static_cast<const OcclusionState&>(*job.state);
    const OcclusionLevel &half = state.half, &quarter = state.quarter;
    switch (job.pass) {
    case kHalf:
        return smoothBand({job.operands[0], 0, job.operands[0].width}, {half.stepX, half.stepY, 1, 1},
                          half.width, half.reach, job);
    case kQuarter:
        return smoothBand(copyOf(state, job, kHalf), {quarter.stepX, quarter.stepY, 1, 1}, quarter.width,
                          quarter.reach, job);
    case kSmooth:
        return smoothBand(copyOf(state, job, kQuarter), {}, quarter.width, quarter.reach, job);
    case kSmoothest:
        return smoothBand(copyOf(state, job, kSmooth), {1, 1, 3, 3}, quarter.width, quarter.reach, job);
    default:
        return lightRows(state, job);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(occlusionArea)

/// A copy of the next larger one's size, halved where that is even.
static void shapeLevel(OcclusionLevel& level, int width, int height)
{
    level.stepX = width % 2 == 0 ? 2 : 1;
    level.stepY = height % 2 == 0 ? 2 : 1;
    level.width = width / level.stepX;
    level.height = height / level.stepY;
}

static std::unique_ptr<State> prepareOcclusion(const Setup& setup)
{
    // Distances in pixels from which rings read the half copy, the quarter copy, and its smoothest form.
    constexpr float kFromHalf = 5.0f, kFromQuarter = 14.0f, kFromSmoothest = 42.0f;
    auto state = std::make_unique<OcclusionState>();
    shapeLevel(state->half, setup.width, setup.height);
    shapeLevel(state->quarter, state->half.width, state->half.height);
    const float width = static_cast<float>(setup.width);
    const float depth = held(setup.parameters[0].f[0], 0.0f, 1000.0f) * 0.01f * width; // in pixels
    const float radius = std::max(held(setup.parameters[1].f[0], 0.0f, 1.0f) * width, 1.0f);
    for (int d = 0; d < kDirections; ++d) {
        const scalar::SinCos turn = scalar::sinCosOfTurns((static_cast<float>(d) + 0.5f) / kDirections);
        for (float distance = 1.0f; distance <= radius;
             distance = std::max(distance + 1.0f, distance * 1.3f)) {
            OcclusionLevel* const level = distance < kFromHalf      ? nullptr
                                          : distance < kFromQuarter ? &state->half
                                                                    : &state->quarter;
            int stepX = level ? state->half.stepX : 1, stepY = level ? state->half.stepY : 1;
            OcclusionSample sample;
            if (level == &state->quarter) {
                stepX *= level->stepX;
                stepY *= level->stepY;
                sample.pass = distance < kFromSmoothest ? kSmooth : kSmoothest;
            }
            sample.dx = static_cast<int>(scalar::roundOf(distance * turn.cosine / static_cast<float>(stepX)));
            sample.dy = static_cast<int>(scalar::roundOf(distance * turn.sine / static_cast<float>(stepY)));
            // The outer half fades out, so that nothing comes in all at once.
            const float fade = held(2.0f - 2.0f * distance / (radius + 1.0f), 0.0f, 1.0f);
            const auto x = static_cast<float>(sample.dx * stepX), y = static_cast<float>(sample.dy * stepY);
            sample.steepness = depth * fade / scalar::sqrtOf(x * x + y * y);
            if (level)
                level->reach = std::max(level->reach, (std::abs(sample.dx) + 15) / 16 * 16);
            (level ? level->rings : state->near)[d].push_back(sample);
        }
    }
    return state;
}

static std::vector<ScratchShape> occlusionScratch(const State* state, const Setup&)
{
    // Blocks of pixels that begin in the picture may end beyond it.
    constexpr int kBeyond = 64;
    const auto& occlusion = static_cast<const OcclusionState&>(*state);
    const auto shape = [](const OcclusionLevel& level) {
        return ScratchShape{level.width + 2 * level.reach + kBeyond, level.height, 1};
    };
    return {shape(occlusion.half), shape(occlusion.quarter), shape(occlusion.quarter),
            shape(occlusion.quarter)};
}

const NodeDeclaration ambientocclusionNode{
    "ambientocclusion",
    "Ambient Occlusion",
    "Surface",
    "How much of an evenly bright sky each place of a height map sees, weighed by the cosine: the horizon is "
    "searched in 16 directions, near by in the map and farther away in smaller copies. Wraps around.",
    ResultChannels::Grey,
    Chance::None,
    {{"height", OperandChannels::Grey, true, "The height map."}},
    {{"depth",
      ParameterType::Float,
      {5.0},
      0,
      50,
      "How far white stands above black, in hundredths of the picture's width."},
     {"radius", ParameterType::Float, {0.1}, 0, 1, "How far is looked, in shares of the picture's width."}},
    prepareOcclusion,
    nullptr,
    runocclusionArea,
    occlusionScratch};

} // namespace vellor::nodes
#endif
