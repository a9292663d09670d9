#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

#include <cstdlib>

// Light from the whole sky, weighed by the cosine: in each of some directions, what is above the horizon
// gives cos^2 of the horizon's angle, which is 1 / (1 + t^2) with t the steepest rise towards any place in
// that direction. Places lie on rings whose distances grow. The farther a ring, the smoother the copy of the
// height map that it reads, so that no single sample shows. Every pixel reads at the same offsets, whole
// pixels, so rows are read in one.

#ifndef VELLOR_AMBIENTOCCLUSION_STATE
#define VELLOR_AMBIENTOCCLUSION_STATE
namespace vellor::nodes {
namespace {

constexpr int kDirections = 16;
constexpr int kSmoothCopies = 3;
constexpr std::array<int, kSmoothCopies> kSmoothSteps = {1, 3, 9}; // pixels between the five taps

struct OcclusionSample
{
    int dx = 0, dy = 0;
    int copy = 0;           // 0 is the height map itself
    float steepness = 0.0f; // factor from a difference in height to a rise
};

struct OcclusionState : State
{
    std::array<std::vector<OcclusionSample>, kDirections> directions;
    int reach = 0; // the farthest sample to either side
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

/// Smooths with weights 1, 4, 6, 4, 1 both ways, the taps `step` pixels apart.
void smoothBand(const ImageView& source, const MutableImage& result, int step, int y0, int y1)
{
    constexpr float kWeights[5] = {1.0f / 16, 4.0f / 16, 6.0f / 16, 4.0f / 16, 1.0f / 16};
    constexpr int kMargin = 2 * 9;
    alignas(64) float column[kChunk + 2 * kMargin + 32];
    alignas(64) float line[kChunk + 2 * kMargin + 32];
    for (int y = y0; y < y1; ++y) {
        for (int x = 0; x < result.width; x += kChunk) {
            const int count = std::min(kChunk, result.width - x), wide = count + 4 * step;
            for (int i = 0; i < wide; i += kLanes)
                store(F(0.0f), column + i);
            for (int t = 0; t < 5; ++t) {
                copyWrapped(rowOf(source, 0, y + (t - 2) * step), source.width, x - 2 * step, wide, line);
                for (int i = 0; i < wide; i += kLanes)
                    store(load(column + i) + load(line + i) * F(kWeights[t]), column + i);
            }
            for (int i = 0; i < count; i += kLanes) {
                F sum(0.0f);
                for (int t = 0; t < 5; ++t)
                    sum += loadAt(column + i + t * step) * F(kWeights[t]);
                store(sum, rowOf(result, 0, y) + x + i);
            }
        }
    }
}

/// Raises the steepest rise of pixels x on to what a sample sees.
void raiseHorizon(const ImageView& copy, const OcclusionSample& sample, const float* height, int x, int y,
                  int count, float* steepest)
{
    alignas(64) float line[kChunk + 16];
    const float* row = rowOf(copy, 0, y + sample.dy);
    const int from = x + sample.dx;
    const float* seen = row + from;
    const int read = (count + kLanes - 1) / kLanes * kLanes;
    if (from < 0 || from + read > copy.width) {
        copyWrapped(row, copy.width, from, count, line);
        seen = line;
    }
    for (int i = 0; i < count; i += kLanes) {
        const F rise = (loadAt(seen + i) - load(height + i)) * F(sample.steepness);
        store(maxOf(load(steepest + i), rise), steepest + i);
    }
}

void occlusionChunk(const OcclusionState& state, const AreaJob& job, int x, int y, int count)
{
    alignas(64) float steepest[kChunk + 16];
    const float* height = rowOf(job.operands[0], 0, y) + x;
    float* result = rowOf(job.result, 0, y) + x;
    for (int i = 0; i < count; i += kLanes)
        store(F(0.0f), result + i);
    for (const std::vector<OcclusionSample>& direction : state.directions) {
        for (int i = 0; i < count; i += kLanes)
            store(F(0.0f), steepest + i);
        for (const OcclusionSample& sample : direction)
            raiseHorizon(sample.copy == 0 ? job.operands[0] : job.scratch[sample.copy - 1], sample, height, x,
                         y, count, steepest);
        for (int i = 0; i < count; i += kLanes) {
            const F t = load(steepest + i);
            const F light = F(1.0f / kDirections) / (F(1.0f) + t * t);
            store(load(result + i) + light, result + i);
        }
    }
}

/// What a sample reads in the row that is under way: add x.
struct Ray
{
    const float* seen;
    float steepness;
};

constexpr int kBlockVectors = 4;
constexpr int kBlock = kBlockVectors * kLanes;

/// The same as occlusionChunk for a block of pixels whose samples all lie inside of the picture: nothing but
/// the samples is read from memory.
HWY_INLINE void occlusionBlock(const std::vector<Ray>& rays, const std::array<std::size_t, kDirections>& ends,
                               const float* height, int x, float* result)
{
    F here[kBlockVectors], sum[kBlockVectors];
    for (int k = 0; k < kBlockVectors; ++k) {
        here[k] = load(height + x + k * kLanes);
        sum[k] = F(0.0f);
    }
    std::size_t i = 0;
    for (const std::size_t end : ends) {
        F steepest[kBlockVectors] = {F(0.0f), F(0.0f), F(0.0f), F(0.0f)};
        for (; i < end; ++i) {
            const float* const seen = rays[i].seen + x;
            const F steepness(rays[i].steepness);
            for (int k = 0; k < kBlockVectors; ++k)
                steepest[k] = maxOf(steepest[k], (loadAt(seen + k * kLanes) - here[k]) * steepness);
        }
        for (int k = 0; k < kBlockVectors; ++k)
            sum[k] += F(1.0f / kDirections) / (F(1.0f) + steepest[k] * steepest[k]);
    }
    for (int k = 0; k < kBlockVectors; ++k)
        store(sum[k], result + x + k * kLanes);
}

void occlusionRows(const OcclusionState& state, const AreaJob& job)
{
    std::vector<Ray> rays;
    std::array<std::size_t, kDirections> ends{};
    for (int y = job.y0; y < job.y1 && !job.stopped(); ++y) {
        rays.clear();
        for (int d = 0; d < kDirections; ++d) {
            for (const OcclusionSample& sample : state.directions[d]) {
                const ImageView& copy = sample.copy == 0 ? job.operands[0] : job.scratch[sample.copy - 1];
                rays.push_back({rowOf(copy, 0, y + sample.dy) + sample.dx, sample.steepness});
            }
            ends[d] = rays.size();
        }
        for (int x = 0; x < job.result.width; x += kBlock) {
            if (x >= state.reach && x + kBlock + state.reach <= job.result.width)
                occlusionBlock(rays, ends, rowOf(job.operands[0], 0, y), x, rowOf(job.result, 0, y));
            else
                occlusionChunk(state, job, x, y, std::min(kBlock, job.result.width - x));
        }
    }
}

void occlusionArea(const AreaJob& job)
{
    const auto& state = static_cast<const OcclusionState&>(*job.state);
    if (job.pass < kSmoothCopies) {
        const ImageView& source = job.pass == 0 ? job.operands[0] : job.scratch[job.pass - 1];
        return smoothBand(source, job.result, kSmoothSteps[job.pass], job.y0, job.y1);
    }
    occlusionRows(state, job);
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(occlusionArea)

/// The copy whose smoothness suits samples at this distance.
static int copyFor(float distance)
{
    return distance < 7.0f ? 0 : distance < 14.0f ? 1 : distance < 42.0f ? 2 : 3;
}

static std::unique_ptr<State> prepareOcclusion(const Setup& setup)
{
    auto state = std::make_unique<OcclusionState>();
    const float width = static_cast<float>(setup.width);
    const float depth = held(setup.parameters[0].f[0], 0.0f, 1000.0f) * 0.01f * width; // in pixels
    const float radius = std::max(held(setup.parameters[1].f[0], 0.0f, 1.0f) * width, 1.0f);
    for (int d = 0; d < kDirections; ++d) {
        const scalar::SinCos turn = scalar::sinCosOfTurns((static_cast<float>(d) + 0.5f) / kDirections);
        for (float distance = 1.0f; distance <= radius;
             distance = std::max(distance + 1.0f, distance * 1.3f)) {
            OcclusionSample sample;
            sample.dx = static_cast<int>(scalar::roundOf(distance * turn.cosine));
            sample.dy = static_cast<int>(scalar::roundOf(distance * turn.sine));
            sample.copy = copyFor(distance);
            state->reach = std::max(state->reach, std::abs(sample.dx));
            // The outer half fades out, so that nothing comes in all at once.
            const float fade = held(2.0f - 2.0f * distance / (radius + 1.0f), 0.0f, 1.0f);
            const auto square = static_cast<float>(sample.dx * sample.dx + sample.dy * sample.dy);
            sample.steepness = depth * fade / scalar::sqrtOf(square);
            state->directions[d].push_back(sample);
        }
    }
    return state;
}

static std::vector<ScratchShape> occlusionScratch(const State*, const Setup& setup)
{
    return std::vector<ScratchShape>(kSmoothCopies, {setup.width, setup.height, 1});
}

const NodeDeclaration ambientocclusionNode{
    "ambientocclusion",
    "Ambient Occlusion",
    "Surface",
    "How much of an evenly bright sky each place of a height map sees, weighed by the cosine: the horizon is "
    "searched in 16 "
    "directions. Wraps around.",
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
