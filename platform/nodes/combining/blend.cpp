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
    HardMix,
    // What mixes whole colours stands last.
    Hue,
    Saturation,
    Colour,
    Luminosity,
    DarkerColour,
    LighterColour,
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

#include "platform/nodes/pointrow-inl.h"

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

/// What mode makes of background b and source s where both are opaque. For a mode of whole colours, b and s
/// are grey.
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
    case BlendMode::HardMix:
        return choose(b + s < F(1.0f), F(0.0f), F(1.0f));
    case BlendMode::Hue:
    case BlendMode::Saturation:
    case BlendMode::Colour:
        return b;
    case BlendMode::DarkerColour:
        return minOf(b, s);
    case BlendMode::LighterColour:
        return maxOf(b, s);
    default:
        return s;
    }
}

/// The weights of Compositing and Blending Level 1.
HWY_INLINE F lumOf(Rgb c)
{
    return F(0.3f) * c.r + F(0.59f) * c.g + F(0.11f) * c.b;
}

HWY_INLINE F highOf(Rgb c)
{
    return maxOf(maxOf(c.r, c.g), c.b);
}

HWY_INLINE F lowOf(Rgb c)
{
    return minOf(minOf(c.r, c.g), c.b);
}

/// lum + (c - lum) * factor.
HWY_INLINE Rgb spreadOf(Rgb c, F lum, F factor)
{
    return {lum + (c.r - lum) * factor, lum + (c.g - lum) * factor, lum + (c.b - lum) * factor};
}

/// Brought to the luminosity lum, and drawn towards its grey where that leaves 0 to 1.
HWY_INLINE Rgb withLum(Rgb c, F lum)
{
    const F shift = lum - lumOf(c);
    c = {c.r + shift, c.g + shift, c.b + shift};
    const F low = lowOf(c), under = lum - low;
    const M below = (low < F(0.0f)) & (under > F(0.0f));
    c = spreadOf(c, lum, choose(below, maxOf(lum, F(0.0f)) / choose(below, under, F(1.0f)), F(1.0f)));
    const F high = highOf(c), over = high - lum;
    const M above = (high > F(1.0f)) & (over > F(0.0f));
    return spreadOf(c, lum,
                    choose(above, maxOf(F(1.0f) - lum, F(0.0f)) / choose(above, over, F(1.0f)), F(1.0f)));
}

/// Brought to the saturation of another colour.
HWY_INLINE Rgb withSaturationOf(Rgb c, Rgb other)
{
    const F low = lowOf(c), span = highOf(c) - low;
    const M grey = span <= F(0.0f);
    const F factor = choose(grey, F(0.0f), (highOf(other) - lowOf(other)) / choose(grey, F(1.0f), span));
    return {(c.r - low) * factor, (c.g - low) * factor, (c.b - low) * factor};
}

HWY_INLINE Rgb choose(M m, Rgb yes, Rgb no)
{
    return {choose(m, yes.r, no.r), choose(m, yes.g, no.g), choose(m, yes.b, no.b)};
}

template<BlendMode mode> HWY_INLINE Rgb mixed(Rgb b, Rgb s)
{
    switch (mode) {
    case BlendMode::Hue:
        return withLum(withSaturationOf(s, b), lumOf(b));
    case BlendMode::Saturation:
        return withLum(withSaturationOf(b, s), lumOf(b));
    case BlendMode::Colour:
        return withLum(s, lumOf(b));
    case BlendMode::Luminosity:
        return withLum(b, lumOf(s));
    case BlendMode::DarkerColour:
        return choose(lumOf(s) < lumOf(b), s, b);
    case BlendMode::LighterColour:
        return choose(lumOf(s) > lumOf(b), s, b);
    default:
        return {mixed<mode>(b.r, s.r), mixed<mode>(b.g, s.g), mixed<mode>(b.b, s.b)};
    }
}

/// The row of a picture; one that isn't connected counts as 0 everywhere.
struct BlendOperand
{
    BlendOperand(const RowJob& job, int operand)
        : r(job.operands[operand * kMaxChannels]), g(job.operands[operand * kMaxChannels + 1]),
          b(job.operands[operand * kMaxChannels + 2]), a(job.operands[operand * kMaxChannels + 3])
    {
    }

    static HWY_INLINE F at(const float* row, int i) { return row ? load(row + i) : F(0.0f); }
    HWY_INLINE Rgb colour(int i) const { return {at(r, i), at(g, i), at(b, i)}; }
    HWY_INLINE F alpha(int i) const { return at(a, i); }

    const float *r, *g, *b, *a;
};

/// How much of the source shows: the opacity, times the mask if there is one.
struct BlendWeight
{
    explicit BlendWeight(const RowJob& job)
        : mask(job.operands[2 * kMaxChannels]), opacity(static_cast<const BlendState&>(*job.state).opacity)
    {
    }

    HWY_INLINE F at(int i) const { return mask ? load(mask + i) * opacity : opacity; }

    const float* mask;
    F opacity;
};

/// Holds values to a range: 0 to 1, or all there are.
struct BlendRange
{
    explicit BlendRange(const RowJob& job)
        : low(static_cast<const BlendState&>(*job.state).clamped ? 0.0f : -3e38f),
          high(static_cast<const BlendState&>(*job.state).clamped ? 1.0f : 3e38f)
    {
    }

    HWY_INLINE F held(F value) const { return clampOf(value, low, high); }

    F low, high;
};

template<BlendMode mode> void blendChannel(const RowJob& job, int c)
{
    const float *source = job.operands[c], *background = job.operands[kMaxChannels + c];
    const ResultRow result(job, c);
    const BlendWeight weight(job);
    const BlendRange range(job);
    const int count = job.count;
    for (int i = 0; i < count; i += kLanes) {
        const F b = BlendOperand::at(background, i), s = BlendOperand::at(source, i);
        result.put(i, range.held(lerpOf(b, mixed<mode>(b, s), weight.at(i))));
    }
}

/// Red, green and blue, weighed by the source's alpha too if told.
template<BlendMode mode> void blendColours(const RowJob& job, bool byAlpha)
{
    const BlendOperand source(job, 0), background(job, 1);
    const ResultRow toR(job, 0), toG(job, 1), toB(job, 2);
    const BlendWeight weight(job);
    const BlendRange range(job);
    const int count = job.count;
    for (int i = 0; i < count; i += kLanes) {
        const Rgb b = background.colour(i), m = mixed<mode>(b, source.colour(i));
        const F w = byAlpha ? weight.at(i) * source.alpha(i) : weight.at(i);
        toR.put(i, range.held(lerpOf(b.r, m.r, w)));
        toG.put(i, range.held(lerpOf(b.g, m.g, w)));
        toB.put(i, range.held(lerpOf(b.b, m.b, w)));
    }
}

/// Source over background with straight alpha.
template<BlendMode mode> void blendOver(const RowJob& job)
{
    const BlendOperand source(job, 0), background(job, 1);
    const ResultRow toR(job, 0), toG(job, 1), toB(job, 2), toA(job, 3);
    const BlendWeight weight(job);
    const BlendRange range(job);
    const int count = job.count;
    for (int i = 0; i < count; i += kLanes) {
        const F sa = source.alpha(i) * weight.at(i), ba = background.alpha(i);
        const F both = sa * ba, only = sa - both, under = ba - both;
        const F alpha = sa + under;
        const M none = alpha == F(0.0f);
        const F inverse = F(1.0f) / choose(none, F(1.0f), alpha);
        const Rgb b = background.colour(i), s = source.colour(i), m = mixed<mode>(b, s);
        toR.put(i, range.held(choose(none, b.r, (both * m.r + (only * s.r + under * b.r)) * inverse)));
        toG.put(i, range.held(choose(none, b.g, (both * m.g + (only * s.g + under * b.g)) * inverse)));
        toB.put(i, range.held(choose(none, b.b, (both * m.b + (only * s.b + under * b.b)) * inverse)));
        toA.put(i, range.held(alpha));
    }
}

template<BlendMode mode> void blendMode(const RowJob& job)
{
    const AlphaRule rule = static_cast<const BlendState&>(*job.state).alpha;
    if (job.channels == 1)
        return blendChannel<mode>(job, 0);
    if (rule == AlphaRule::Over)
        return blendOver<mode>(job);
    blendColours<mode>(job, rule == AlphaRule::Keep);
    if (rule == AlphaRule::Channel)
        return blendChannel<mode>(job, 3);
    const BlendOperand background(job, 1);
    const BlendRange range(job);
    const ResultRow alpha(job, 3);
    for (int i = 0; i < job.count; i += kLanes)
        alpha.put(i, range.held(background.alpha(i)));
}

template<int mode> void dispatchMode(const RowJob& job)
{
    if constexpr (mode < static_cast<int>(BlendMode::Count)) {
        if (static_cast<int>(static_cast<const BlendState&>(*job.state).mode) == mode)
            blendMode<static_cast<BlendMode>(mode)>(job);
        else
            dispatchMode<mode + 1>(job);
    }
}

void blendRow(const RowJob& job)
{
    dispatchMode<0>(job);
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_PUTTING_ROW_KERNEL(blendRow)

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
    "linearlight b + 2 s - 1, linearburn b + s - 1, average (b + s) / 2, negation 1 - |1 - b - s|, hardmix 1 "
    "where b + s reaches 1 and 0 elsewhere, darkercolour and "
    "lightercolour the one of lower or higher luminosity.",
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
      27,
      "How the two are mixed.",
      {"normal",     "add",        "subtract",     "multiply",     "divide",      "screen",
       "overlay",    "softlight",  "hardlight",    "linearlight",  "vividlight",  "pinlight",
       "darken",     "lighten",    "difference",   "exclusion",    "colourdodge", "colourburn",
       "linearburn", "average",    "negation",     "hardmix",      "hue",         "saturation",
       "colour",     "luminosity", "darkercolour", "lightercolour"}},
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
