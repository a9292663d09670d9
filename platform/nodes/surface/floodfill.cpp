#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"
#include "platform/nodes/surface/regionruns.h"

#include <cstring>

// Three passes: runs of each row, joined as far as the rows at hand go; what is left to join and a name for
// each region, all in one job; the pixels. regions-inl.h reads what is written here.

#ifndef VELLOR_FLOODFILL_STATE
#define VELLOR_FLOODFILL_STATE
namespace vellor::nodes {
namespace {

struct FloodFillState : State
{
    float threshold = 0.5f;
    bool diagonal = false;
};

// A prime, so that the cells share no lines with patterns of a round number of tiles.
constexpr int kNameCells = 53;

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/surface/floodfill.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

/// Which of the 64 pixels from x on belong to regions, the first one in the lowest bit.
HWY_INLINE std::uint64_t insideBits(const float* row, int x, int width, float threshold)
{
    const int count = std::min(64, width - x);
    std::uint64_t bits = 0;
    for (int i = 0; i < count; i += kLanes) {
        std::uint8_t part[8] = {};
        hn::StoreMaskBits(FloatTag(), (load(row + x + i) >= F(threshold)).m, part);
        std::uint64_t lanes;
        std::memcpy(&lanes, part, sizeof lanes);
        bits |= lanes << i;
    }
    return count < 64 ? bits & ((std::uint64_t(1) << count) - 1) : bits;
}

void findRuns(const float* row, int y, float threshold, RegionRuns& runs)
{
    runs.startRow(y);
    std::uint64_t last = 0; // whether the pixel before belongs to a region
    int start = 0;
    for (int x = 0; x < runs.width(); x += 64) {
        const std::uint64_t bits = insideBits(row, x, runs.width(), threshold);
        std::uint64_t changes = bits ^ (bits << 1 | last);
        for (; changes != 0; changes &= changes - 1) {
            const int place = x + static_cast<int>(hwy::Num0BitsBelowLS1Bit_Nonzero64(changes));
            if (last == 0)
                start = place;
            else
                runs.addRun(y, start, place);
            last ^= 1;
        }
    }
    if (last != 0)
        runs.addRun(y, start, runs.width());
}

/// first / size, (first + 1) / size, ...
void fillRamp(float* result, int count, float first, float size)
{
    int i = 0;
    for (; i + kLanes <= count; i += kLanes)
        storeAt(countFrom(first + static_cast<float>(i)) / F(size), result + i);
    for (; i < count; ++i)
        result[i] = (first + static_cast<float>(i)) / size;
}

void fillRun(const RegionRuns& runs, std::uint32_t run, int y, float* const (&rows)[4])
{
    const std::uint32_t root = runs.rootOf(run), name = runs.valueOf(root);
    const RegionInterval boxX = runs.boxX(root), boxY = runs.boxY(root);
    const int start = runs.start(run), count = runs.end(run) - start;
    const float across = static_cast<float>(wrapped(start - boxX.start, runs.width())) + 0.5f;
    const float down = static_cast<float>(wrapped(y - boxY.start, runs.height())) + 0.5f;
    const auto width = static_cast<float>(boxX.length), height = static_cast<float>(boxY.length);
    fillRamp(rows[0] + start, count, across, width);
    std::fill_n(rows[1] + start, count, down / height);
    std::fill_n(rows[2] + start, count, width + static_cast<float>(name >> 10) * (1.0f / 1024.0f));
    std::fill_n(rows[3] + start, count, height + static_cast<float>(name & 1023u) * (1.0f / 1024.0f));
}

void fillRow(const RegionRuns& runs, int y, float* const (&rows)[4])
{
    int done = 0;
    for (std::uint32_t run = runs.firstRun(y); run < runs.endRun(y); ++run) {
        for (float* row : rows)
            std::fill(row + done, row + runs.start(run), 0.0f);
        fillRun(runs, run, y, rows);
        done = runs.end(run);
    }
    for (float* row : rows)
        std::fill(row + done, row + runs.width(), 0.0f);
}

void floodFillRuns(const FloodFillState& state, const AreaJob& job)
{
    const ImageView& mask = job.operands[0];
    RegionRuns runs(job.result, mask.width, mask.height);
    for (int y = job.y0; y < job.y1 && !job.stopped(); ++y) {
        findRuns(rowOf(mask, 0, y), y, state.threshold, runs);
        if (y > job.y0)
            runs.joinToAbove(y, state.diagonal);
    }
}

/// A name that depends on where the middle of the box lies, in cells of the picture, and keeps through most
/// changes of resolution. Regions of one cell are told apart by their order in it.
std::uint32_t nameOf(const RegionRuns& runs, std::uint32_t root, float* cellCounts)
{
    const auto cellOf = [](const RegionInterval& box, int size) {
        const double middle = (box.start + 0.5 * box.length) / size + 0.37 / kNameCells;
        return static_cast<int>((middle - scalar::floorOf(static_cast<float>(middle))) * kNameCells) %
               kNameCells;
    };
    const RegionInterval boxX = runs.boxX(root), boxY = runs.boxY(root);
    const int cell = cellOf(boxY, runs.height()) * kNameCells + cellOf(boxX, runs.width());
    const auto order = static_cast<std::uint32_t>(cellCounts[cell]);
    cellCounts[cell] += 1.0f;
    const std::uint32_t hash = scalar::hashLattice(static_cast<std::uint32_t>(cell), order, 0x2545f491u);
    const auto box = static_cast<float>(boxX.length) * static_cast<float>(boxY.length);
    const float share = std::min(static_cast<float>(runs.valueOf(root)) / box, 1.0f);
    // Next to 16384, nine bits are left behind the point.
    const std::uint32_t maskX = boxX.length < 16384 ? 1023u : 1022u,
                        maskY = boxY.length < 16384 ? 1023u : 1022u;
    const auto filled = static_cast<std::uint32_t>(scalar::sqrtOf(share) * 1023.0f + 0.5f);
    return (filled & maskX) << 10 | (hash >> 22 & maskY);
}

void floodFillArea(const AreaJob& job)
{
    const auto& state = static_cast<const FloodFillState&>(*job.state);
    if (job.pass == 0)
        return floodFillRuns(state, job);
    RegionRuns runs(job.scratch[0], job.operands[0].width, job.operands[0].height);
    if (job.pass == 1) {
        float* cellCounts = rowOf(job.result, 0, 0);
        std::fill_n(cellCounts, kNameCells * kNameCells, 0.0f);
        const auto stopped = [&job] { return job.stopped(); };
        runs.joinRest(state.diagonal, stopped);
        return runs.nameRoots([&](std::uint32_t root) { return nameOf(runs, root, cellCounts); }, stopped);
    }
    for (int y = job.y0; y < job.y1; ++y)
        fillRow(runs, y,
                {rowOf(job.result, 0, y), rowOf(job.result, 1, y), rowOf(job.result, 2, y),
                 rowOf(job.result, 3, y)});
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(floodFillArea)

static std::unique_ptr<State> prepareFloodFill(const Setup& setup)
{
    auto state = std::make_unique<FloodFillState>();
    state->threshold = setup.parameters[0].f[0];
    state->diagonal = setup.parameters[1].i[0] != 0;
    return state;
}

static std::vector<ScratchShape> floodFillScratch(const State*, const Setup& setup)
{
    return {RegionRuns::shape(setup.width, setup.height), {kNameCells * kNameCells, 1, 1}};
}

const NodeDeclaration floodfillNode{
    "floodfill",
    "Flood Fill",
    "Surface",
    "Finds the connected regions of a mask by joining runs of pixels (union-find), across the picture's "
    "edges "
    "too; region kinds read what it gives, which is no picture to look at or to filter. Red and green are "
    "the "
    "position in the box around the region, 0 to 1. The whole part of blue is the width of that box in "
    "pixels, "
    "the whole part of alpha its height. The rest of blue is the square root of the share of the box that "
    "the "
    "region fills; the rest of alpha is a random number of the region that stays the same at nearly every "
    "resolution. Outside of regions all four are 0. A region that goes all around the picture takes its "
    "whole "
    "width or height.",
    ResultChannels::Colour,
    Chance::None,
    {{"mask", OperandChannels::Grey, true, "The mask; regions are light."}},
    {{"threshold", ParameterType::Float, {0.5}, 0, 1, "From which value on a pixel belongs to a region."},
     {"diagonal",
      ParameterType::Bool,
      {0},
      0,
      1,
      "Whether pixels that touch at a corner alone are connected."}},
    prepareFloodFill,
    nullptr,
    runfloodFillArea,
    floodFillScratch};

} // namespace vellor::nodes
#endif
