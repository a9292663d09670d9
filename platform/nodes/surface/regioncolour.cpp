#include "platform/nodes/dispatch.h"
#include "platform/nodes/gradient.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

#include <algorithm>

// Names of regions have ten bits, so there is a table of all colours that a region can have.

#ifndef VELLOR_REGIONCOLOUR_STATE
#define VELLOR_REGIONCOLOUR_STATE
namespace vellor::nodes {
namespace {

struct RegionColourState : State
{
    std::array<std::array<float, 1024>, kMaxChannels> colours; // by the region's name
    std::array<float, 4> background{};
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/surface/regioncolour.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/surface/regions-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void regionColourRow(const RowJob& job)
{
    const auto& state = static_cast<const RegionColourState&>(*job.state);
    for (int i = 0; i < job.count; i += kLanes) {
        const RegionPixels at = regionsAt(job.operands, i);
        for (int c = 0; c < kMaxChannels; ++c)
            store(choose(at.inside, gather(state.colours[c].data(), at.name), F(state.background[c])),
                  job.result[c] + i);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(regionColourRow)

namespace {

using Colour = std::array<float, 4>;

struct Hsl
{
    float hue = 0.0f, saturation = 0.0f, lightness = 0.0f; // hue in turns
};

Hsl hslOf(const Colour& colour)
{
    const float r = held(colour[0], 0.0f, 1.0f), g = held(colour[1], 0.0f, 1.0f),
                b = held(colour[2], 0.0f, 1.0f);
    const float high = std::max({r, g, b}), low = std::min({r, g, b}), span = high - low;
    Hsl hsl{0.0f, 0.0f, 0.5f * (high + low)};
    if (span <= 0.0f)
        return hsl;
    hsl.saturation = span / (1.0f - scalar::absOf(high + low - 1.0f));
    const float sector = high == r   ? (g - b) / span
                         : high == g ? (b - r) / span + 2.0f
                                     : (r - g) / span + 4.0f;
    hsl.hue = sector / 6.0f;
    return hsl;
}

Colour colourOf(const Hsl& hsl, float alpha)
{
    const float chroma = (1.0f - scalar::absOf(2.0f * hsl.lightness - 1.0f)) * hsl.saturation;
    const auto channel = [&](float place) {
        const float turned = hsl.hue + place, h = (turned - scalar::floorOf(turned)) * 6.0f;
        return hsl.lightness + chroma * (held(scalar::absOf(h - 3.0f) - 1.0f, 0.0f, 1.0f) - 0.5f);
    };
    return {channel(0.0f), channel(-1.0f / 3.0f), channel(1.0f / 3.0f), alpha};
}

/// A number from -1 to 1.
float signedOf(std::uint32_t hash)
{
    return 2.0f * scalar::unitOf(hash) - 1.0f;
}

/// A colour around the base, or, where the base is not wanted, one from the gradient.
std::unique_ptr<State> prepareRegionColour(const Setup& setup)
{
    auto state = std::make_unique<RegionColourState>();
    const ParameterValue* p = setup.parameters;
    const bool fromGradient = p[0].i[0] == 1;
    const Hsl base = hslOf(p[1].f);
    const Gradient gradient = Gradient::fromBlob(p[5].blob, p[5].blobSize);
    const std::uint32_t seed = scalar::mixBits(static_cast<std::uint32_t>(setup.seed) + 0x1f83d9abu);
    for (std::uint32_t name = 0; name < 1024; ++name) {
        const std::uint32_t first = scalar::hashLattice(name, 0u, seed), second = scalar::nextHash(first),
                            third = scalar::nextHash(second);
        Hsl hsl = base;
        hsl.hue += signedOf(first) * held(p[2].f[0], 0.0f, 1.0f);
        hsl.saturation = held(hsl.saturation + signedOf(second) * held(p[3].f[0], 0.0f, 1.0f), 0.0f, 1.0f);
        hsl.lightness = held(hsl.lightness + signedOf(third) * held(p[4].f[0], 0.0f, 1.0f), 0.0f, 1.0f);
        const Colour colour = fromGradient ? gradient.at(scalar::unitOf(first)) : colourOf(hsl, p[1].f[3]);
        for (int c = 0; c < kMaxChannels; ++c)
            state->colours[c][name] = colour[c];
    }
    state->background = p[6].f;
    return state;
}

} // namespace

const NodeDeclaration regioncolourNode{
    "regioncolour",
    "Region Colour",
    "Surface",
    "Gives each region that floodfill found a random colour.",
    ResultChannels::Colour,
    Chance::Seeded,
    {{"regions", OperandChannels::Colour, true, "The regions, from floodfill."}},
    {{"source",
      ParameterType::Choice,
      {0},
      0,
      1,
      "variation strays from the base colour in hue, saturation and lightness; gradient takes a random place "
      "of the gradient.",
      {"variation", "gradient"}},
     {"colour", ParameterType::Float4, {0.5, 0.35, 0.25, 1.0}, 0, 1, "The base colour."},
     {"huevariation", ParameterType::Float, {0.05}, 0, 0.5, "How far hues stray on either side, in turns."},
     {"saturationvariation", ParameterType::Float, {0.1}, 0, 1, "How far saturations stray on either side."},
     {"lightnessvariation", ParameterType::Float, {0.1}, 0, 1, "How far lightnesses stray on either side."},
     {"gradient", ParameterType::Gradient, {}, 0, 1, "The colours; black to white when there are none."},
     {"background", ParameterType::Float4, {0.0, 0.0, 0.0, 1.0}, 0, 1, "The colour outside of regions."}},
    prepareRegionColour,
    runregionColourRow};

} // namespace vellor::nodes
#endif
