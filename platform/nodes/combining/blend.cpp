#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"

#ifndef VELLOR_BLEND_STATE
#define VELLOR_BLEND_STATE
namespace vellor::nodes {
namespace {

enum class BlendMode
{
    Normal,
    Add,
    Subtract,
    Multiply,
    Divide,
    Screen,
    Overlay,
    SoftLight,
    HardLight,
    LinearLight,
    VividLight,
    PinLight,
    Darken,
    Lighten,
    Difference,
    Exclusion,
    ColourDodge,
    ColourBurn,
    LinearBurn,
    Average,
    Negation,
    Count
};

enum class AlphaRule
{
    Over,
    Keep,
    Channel,
    Ignore
};

struct BlendState : State
{
    BlendMode mode = BlendMode::Normal;
    AlphaRule alpha = AlphaRule::Over;
    float opacity = 1.0f;
    bool clamped = false;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/combining/blend.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

/// b / s held to 1; 0 / 0 is 0.
HWY_INLINE F ratioOf(F b, F s)
{
    const F ratio = minOf(b / choose(s == F(0.0f), F(1.0f), s), F(1.0f));
    return choose(s <= F(0.0f), choose(b <= F(0.0f), F(0.0f), F(1.0f)), ratio);
}

HWY_INLINE F burnOf(F b, F s)
{
    return F(1.0f) - ratioOf(F(1.0f) - b, s);
}

HWY_INLINE F screenOf(F b, F s)
{
    return b + s - b * s;
}

HWY_INLINE F hardLightOf(F b, F s)
{
    const F twice = s + s;
    return choose(s <= F(0.5f), b * twice, screenOf(b, twice - F(1.0f)));
}

/// As in the W3C's Compositing and Blending Level 1.
HWY_INLINE F softLightOf(F b, F s)
{
    const F low = ((F(16.0f) * b - F(12.0f)) * b + F(4.0f)) * b;
    const F bent = choose(b <= F(0.25f), low, sqrtOf(maxOf(b, F(0.0f))));
    const F amount = s + s - F(1.0f);
    return b + amount * choose(s <= F(0.5f), b * (F(1.0f) - b), bent - b);
}

HWY_INLINE F vividLightOf(F b, F s)
{
    const F twice = s + s;
    return choose(s <= F(0.5f), burnOf(b, twice), ratioOf(b, F(2.0f) - twice));
}

HWY_INLINE F pinLightOf(F b, F s)
{
    const F twice = s + s;
    return choose(s <= F(0.5f), minOf(b, twice), maxOf(b, twice - F(1.0f)));
}

/// What mode makes of background b and source s where both are opaque.
template<BlendMode mode> HWY_INLINE F mixed(F b, F s)
{
    switch (mode) {
    case BlendMode::Add:
        return b + s;
    case BlendMode::Subtract:
        return b - s;
    case BlendMode::Multiply:
        return b * s;
    case BlendMode::Divide:
        return ratioOf(b, s);
    case BlendMode::Screen:
        return screenOf(b, s);
    case BlendMode::Overlay:
        return hardLightOf(s, b);
    case BlendMode::SoftLight:
        return softLightOf(b, s);
    case BlendMode::HardLight:
        return hardLightOf(b, s);
    case BlendMode::LinearLight:
        return b + (s + s - F(1.0f));
    case BlendMode::VividLight:
        return vividLightOf(b, s);
    case BlendMode::PinLight:
        return pinLightOf(b, s);
    case BlendMode::Darken:
        return minOf(b, s);
    case BlendMode::Lighten:
        return maxOf(b, s);
    case BlendMode::Difference:
        return absOf(b - s);
    case BlendMode::Exclusion:
        return b + s - (b * s + b * s);
    case BlendMode::ColourDodge:
        return ratioOf(b, F(1.0f) - s);
    case BlendMode::ColourBurn:
        return burnOf(b, s);
    case BlendMode::LinearBurn:
        return b + s - F(1.0f);
    case BlendMode::Average:
        return (b + s) * F(0.5f);
    case BlendMode::Negation:
        return F(1.0f) - absOf(F(1.0f) - b - s);
    default:
        return s;
    }
}

/// The operands of one row. A picture that isn't connected counts as 0 everywhere, a mask as 1.
struct BlendRow
{
    const RowJob& job;
    const BlendState& state;

    HWY_INLINE F source(int c, int i) const { return at(job.operands[c], i); }
    HWY_INLINE F background(int c, int i) const { return at(job.operands[kMaxChannels + c], i); }
    HWY_INLINE F weight(int i) const
    {
        const float* mask = job.operands[2 * kMaxChannels];
        return mask ? load(mask + i) * F(state.opacity) : F(state.opacity);
    }
    HWY_INLINE void put(F value, int c, int i) const
    {
        store(state.clamped ? clampOf(value, F(0.0f), F(1.0f)) : value, job.result[c] + i);
    }
    static HWY_INLINE F at(const float* row, int i) { return row ? load(row + i) : F(0.0f); }
};

template<BlendMode mode> void blendChannel(const BlendRow& row, int c, bool sourceAlpha)
{
    for (int i = 0; i < row.job.count; i += kLanes) {
        const F b = row.background(c, i);
        F weight = row.weight(i);
        if (sourceAlpha)
            weight *= row.source(3, i);
        row.put(lerpOf(b, mixed<mode>(b, row.source(c, i)), weight), c, i);
    }
}

/// Source over background with straight alpha.
template<BlendMode mode> void blendOver(const BlendRow& row)
{
    for (int i = 0; i < row.job.count; i += kLanes) {
        const F sa = row.source(3, i) * row.weight(i), ba = row.background(3, i);
        const F both = sa * ba, only = sa - both, under = ba - both;
        const F alpha = sa + under;
        const F inverse = F(1.0f) / choose(alpha == F(0.0f), F(1.0f), alpha);
        for (int c = 0; c < 3; ++c) {
            const F b = row.background(c, i), s = row.source(c, i);
            const F sum = both * mixed<mode>(b, s) + (only * s + under * b);
            row.put(choose(alpha == F(0.0f), b, sum * inverse), c, i);
        }
        row.put(alpha, 3, i);
    }
}

template<BlendMode mode> void blendMode(const BlendRow& row)
{
    if (row.job.channels == 1)
        return blendChannel<mode>(row, 0, false);
    if (row.state.alpha == AlphaRule::Over)
        return blendOver<mode>(row);
    for (int c = 0; c < 3; ++c)
        blendChannel<mode>(row, c, row.state.alpha == AlphaRule::Keep);
    if (row.state.alpha == AlphaRule::Channel)
        return blendChannel<mode>(row, 3, false);
    for (int i = 0; i < row.job.count; i += kLanes)
        row.put(row.background(3, i), 3, i);
}

template<int mode> void dispatchMode(const BlendRow& row)
{
    if constexpr (mode < static_cast<int>(BlendMode::Count)) {
        if (static_cast<int>(row.state.mode) == mode)
            blendMode<static_cast<BlendMode>(mode)>(row);
        else
            dispatchMode<mode + 1>(row);
    }
}

void blendRow(const RowJob& job)
{
    dispatchMode<0>({job, static_cast<const BlendState&>(*job.state)});
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(blendRow)

static std::unique_ptr<State> prepareBlend(const Setup& setup)
{
    auto state = std::make_unique<BlendState>();
    const int last = static_cast<int>(BlendMode::Count) - 1;
    state->mode = static_cast<BlendMode>(std::min(std::max(setup.parameters[0].i[0], 0), last));
    state->opacity = setup.parameters[1].f[0];
    state->alpha = static_cast<AlphaRule>(std::min(std::max(setup.parameters[2].i[0], 0), 3));
    state->clamped = setup.parameters[3].i[0] != 0;
    return state;
}

const NodeDeclaration blendNode{
    "blend",
    "Blend",
    "Combining",
    "Lays a source over a background. The modes are those of the W3C's Compositing and Blending Level 1 and "
    "the usual "
    "ones beyond it, with b for the background and s for the source: add b + s, subtract b - s, divide b / s "
    "up to 1, "
    "linearlight b + 2 s - 1, linearburn b + s - 1, average (b + s) / 2, negation 1 - |1 - b - s|.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"source", OperandChannels::Result, false,
      "The upper picture; black and transparent when not connected."},
     {"background", OperandChannels::Result, false,
      "The lower picture; black and transparent when not connected."},
     {"mask", OperandChannels::Grey, false, "Multiplies the opacity, pixel by pixel."}},
    {{"mode",
      ParameterType::Choice,
      {0},
      0,
      20,
      "How the two are mixed.",
      {"normal",     "add",       "subtract",    "multiply",   "divide",     "screen",  "overlay",
       "softlight",  "hardlight", "linearlight", "vividlight", "pinlight",   "darken",  "lighten",
       "difference", "exclusion", "colourdodge", "colourburn", "linearburn", "average", "negation"}},
     {"opacity", ParameterType::Float, {1.0}, 0, 1, "How much of the source shows."},
     {"alpha",
      ParameterType::Choice,
      {0},
      0,
      3,
      "What alpha means for colour: over composes with straight alpha; keep weighs the source by its alpha "
      "and keeps the "
      "background's; channel treats alpha as the other channels; ignore keeps the background's and does not "
      "look at the "
      "source's.",
      {"over", "keep", "channel", "ignore"}},
     {"clamp", ParameterType::Bool, {0}, 0, 1, "Holds the result to 0 to 1."}},
    prepareBlend,
    runblendRow};

} // namespace vellor::nodes
#endif
