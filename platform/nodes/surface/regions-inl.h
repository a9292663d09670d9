// What floodfill says of a region, for the instruction set that is being compiled. Included by the files of
// region kinds after simd.h.

#if defined(VELLOR_REGIONS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLOR_REGIONS_INL_H
#undef VELLOR_REGIONS_INL_H
#else
#define VELLOR_REGIONS_INL_H
#endif

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {

struct RegionPixels
{
    M inside;
    F u, v;          // in the region's box, 0 to 1
    F width, height; // of the box in pixels, 1 to 16384
    F filled;        // share of the box that the region takes
    U name;          // random, 10 bits
};

/// From four lines of a picture of floodfill's. Any other picture gives something within the same ranges.
HWY_INLINE RegionPixels regionsAt(const float* const* lines, int i)
{
    RegionPixels at;
    const F zero(0.0f), one(1.0f), most(16384.999f);
    const F blue = clampOf(load(lines[2] + i), zero, most), alpha = clampOf(load(lines[3] + i), zero, most);
    at.width = floorOf(blue);
    at.height = floorOf(alpha);
    at.inside = (at.width >= one) & (at.height >= one);
    const F root = (blue - at.width) * F(1024.0f / 1023.0f);
    at.filled = root * root;
    at.name = toInteger((alpha - at.height) * F(1024.0f));
    at.width = maxOf(at.width, one);
    at.height = maxOf(at.height, one);
    at.u = clampOf(load(lines[0] + i), zero, one);
    at.v = clampOf(load(lines[1] + i), zero, one);
    return at;
}

/// A random number in [0, 1) for each region; `purpose` tells apart those that one kind draws.
HWY_INLINE F randomOf(const RegionPixels& at, std::uint32_t seed, std::uint32_t purpose)
{
    return unitOf(hashLattice(at.name, U(purpose), U(seed)));
}

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
