#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"

#ifndef VELLOR_HSL_STATE
#define VELLOR_HSL_STATE
namespace vellor::nodes {
namespace {

struct HslState : State
{
    float hue = 0.0f, saturation = 0.0f, lightness = 0.0f;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/hsl.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/resultrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

struct Hsl
{
    F hue, saturation, lightness; // hue in turns
};

HWY_INLINE Hsl hslOf(F r, F g, F b)
{
    const F high = maxOf(maxOf(r, g), b), low = minOf(minOf(r, g), b);
    const F sum = high + low, span = high - low;
    const M grey = span <= F(0.0f);
    const F safe = choose(grey, F(1.0f), span);
    F sector = choose(high == r, (g - b) / safe,
                      choose(high == g, (b - r) / safe + F(2.0f), (r - g) / safe + F(4.0f)));
    sector = choose(grey, F(0.0f), sector);
    const F room = F(1.0f) - absOf(sum - F(1.0f));
    const F saturation =
        choose(grey | (room <= F(0.0f)), F(0.0f), span / choose(room <= F(0.0f), F(1.0f), room));
    return {sector * F(1.0f / 6.0f), saturation, sum * F(0.5f)};
}

/// One channel; `place` is 0 for red, -1/3 for green, 1/3 for blue.
HWY_INLINE F channelOf(const Hsl& hsl, float place)
{
    const F turned = hsl.hue + F(place);
    const F h = (turned - floorOf(turned)) * F(6.0f);
    const F ramp = clampOf(absOf(h - F(3.0f)) - F(1.0f), F(0.0f), F(1.0f));
    const F chroma = (F(1.0f) - absOf(hsl.lightness + hsl.lightness - F(1.0f))) * hsl.saturation;
    return hsl.lightness + chroma * (ramp - F(0.5f));
}

void hslRow(const RowJob& job)
{
    const auto& state = static_cast<const HslState&>(*job.state);
    const F gain(state.saturation), light(state.lightness);
    const ResultRow toR(job, 0), toG(job, 1), toB(job, 2), toA(job, 3);
    for (int i = 0; i < job.count; i += kLanes) {
        Hsl hsl = hslOf(load(job.operands[0] + i), load(job.operands[1] + i), load(job.operands[2] + i));
        hsl.hue = hsl.hue + F(state.hue);
        hsl.saturation = clampOf(hsl.saturation * gain, F(0.0f), F(1.0f));
        const F target = choose(light > F(0.0f), F(1.0f), F(0.0f));
        hsl.lightness = lerpOf(hsl.lightness, target, absOf(light));
        toR.put(i, channelOf(hsl, 0.0f));
        toG.put(i, channelOf(hsl, -1.0f / 3.0f));
        toB.put(i, channelOf(hsl, 1.0f / 3.0f));
        toA.put(i, load(job.operands[3] + i));
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_PUTTING_ROW_KERNEL(hslRow)

static std::unique_ptr<State> prepareHsl(const Setup& setup)
{
    auto state = std::make_unique<HslState>();
    state->hue = setup.parameters[0].f[0];
    state->saturation = 1.0f + held(setup.parameters[1].f[0], -1.0f, 10.0f);
    state->lightness = held(setup.parameters[2].f[0], -1.0f, 1.0f);
    return state;
}

const NodeDeclaration hslNode{
    "hsl",
    "Hue, Saturation, Lightness",
    "Tone",
    "Turns the hue and changes saturation and lightness in the double cone of hue, saturation and lightness. "
    "Alpha stays.",
    ResultChannels::Colour,
    Chance::None,
    {{"input", OperandChannels::Colour, true, "The colour picture."}},
    {{"hue", ParameterType::Float, {0.0}, -0.5, 0.5, "How far hues turn, in turns."},
     {"saturation", ParameterType::Float, {0.0}, -1, 1, "-1 takes all colour out, 1 doubles it."},
     {"lightness", ParameterType::Float, {0.0}, -1, 1, "-1 is black, 1 is white."}},
    prepareHsl,
    runhslRow};

} // namespace vellor::nodes
#endif
