// What blocks look like, for the instruction set that is being compiled. Included after simd.h.

#if defined(VELLOR_NODES_BLOCKS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLOR_NODES_BLOCKS_INL_H
#undef VELLOR_NODES_BLOCKS_INL_H
#else
#define VELLOR_NODES_BLOCKS_INL_H
#endif

#include "platform/nodes/patterns/blocks.h"
#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {

/// The block under some places.
struct Blocks
{
    F u, v;   // position within the block's cell, 0 to 1
    F inside; // distance from the block's edge, positive inside
    U hash;
    F direction; // 1 for blocks that lie the second way
};

/// Distance from the edge of a box with rounded corners, positive inside; (x, y) from its middle.
HWY_INLINE F insideBox(F x, F y, F halfX, F halfY, float rounding)
{
    const F radius = maxOf(minOf(F(rounding), minOf(halfX, halfY)), F(0.0f));
    const F qx = absOf(x) - halfX + radius, qy = absOf(y) - halfY + radius;
    const F ox = maxOf(qx, F(0.0f)), oy = maxOf(qy, F(0.0f));
    return radius - sqrtOf(ox * ox + oy * oy) - minOf(maxOf(qx, qy), F(0.0f));
}

/// The plane that a block's face is tilted to, -1 to 1.
HWY_INLINE F slopeOf(const Blocks& blocks)
{
    const SinCos way = sinCosOfTurns(unitOf(nextHash(blocks.hash)));
    const F x = blocks.u * F(2.0f) - F(1.0f), y = blocks.v * F(2.0f) - F(1.0f);
    return (x * way.cosine + y * way.sine) * F(0.70710678f);
}

HWY_INLINE F heightOf(const BlockState& state, const Blocks& blocks)
{
    // The slope, made wider by a pixel, which smooths it.
    const F t = clampOf((blocks.inside + F(0.5f * state.pixel)) * F(1.0f / (state.bevel + state.pixel)),
                        F(0.0f), F(1.0f));
    const F profile = t * t * (F(3.0f) - F(2.0f) * t);
    const F low = unitOf(nextHash(nextHash(blocks.hash))) * F(state.heightVariation);
    const F top = F(1.0f) - low - (slopeOf(blocks) + F(1.0f)) * F(0.5f * state.tilt);
    return profile * maxOf(top, F(0.0f));
}

HWY_INLINE F blockValue(const BlockState& state, const Blocks& blocks)
{
    switch (state.output) {
    case BlockOutput::Height:
        return heightOf(state, blocks);
    case BlockOutput::Mask: {
        // Each side of a joint counts up to its middle: what is narrower than a pixel shows as its share of
        // one.
        const float joint = std::min(state.mortar / state.pixel, 1.0f);
        const float side = 0.5f + 0.5f * joint;
        const F bed = clampOf(F(0.5f) - blocks.inside * F(1.0f / state.pixel), F(0.0f), F(1.0f));
        return F(1.0f) - bed * F(joint / (side * side));
    }
    case BlockOutput::Value:
        return unitOf(blocks.hash);
    case BlockOutput::U:
        return blocks.u;
    case BlockOutput::V:
        return blocks.v;
    case BlockOutput::Slope:
        return slopeOf(blocks) * F(0.5f) + F(0.5f);
    case BlockOutput::Edge:
        return maxOf(blocks.inside, F(0.0f)) * F(2.0f);
    case BlockOutput::Direction:
        return blocks.direction;
    }
    return F(0.0f);
}

/// Draws a row; at(x, y) gives the Blocks at places in shares of the picture, of which y is one number.
template<class At> HWY_INLINE void blockRow(const RowJob& job, const BlockState& state, const At& at)
{
    // What changes from block to block, and not by distance, is smoothed by four samples on a turned grid.
    const bool smooth = state.output != BlockOutput::Height && state.output != BlockOutput::Mask &&
                        state.output != BlockOutput::Edge;
    constexpr float kSamples[4][2] = {
        {-0.375f, -0.125f}, {0.125f, -0.375f}, {0.375f, 0.125f}, {-0.125f, 0.375f}};
    const float y = centreOf(job.y, job.height);
    const float pixelX = 1.0f / static_cast<float>(job.width), pixelY = 1.0f / static_cast<float>(job.height);
    for (int i = 0; i < job.count; i += kLanes) {
        const F x = centresFrom(job.x + i, job.width);
        F sum(0.0f);
        if (smooth) {
            for (const auto& sample : kSamples)
                sum += blockValue(state, at(x + F(sample[0] * pixelX), y + sample[1] * pixelY));
            sum *= F(0.25f);
        } else {
            sum = blockValue(state, at(x, y));
        }
        store(sum, job.result[0] + i);
    }
}

/// whole modulo count, for whole numbers within 2^22.
HWY_INLINE F aroundOf(F whole, float count)
{
    return whole - F(count) * floorOf((whole + F(0.5f)) * F(1.0f / count));
}

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
