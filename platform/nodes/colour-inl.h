// Colour spaces, for the instruction set that is being compiled. Includes pointrow-inl.h.

#if defined(VELLOR_NODES_COLOUR_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLOR_NODES_COLOUR_INL_H
#undef VELLOR_NODES_COLOUR_INL_H
#else
#define VELLOR_NODES_COLOUR_INL_H
#endif

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {

/// IEC 61966-2-1, by its two pieces; the straight one goes on below 0, the other above 1.
HWY_INLINE F linearOfSrgb(F x)
{
    const F power = powOfPositive((x + F(0.055f)) * F(1.0f / 1.055f), F(2.4f));
    return choose(x <= F(0.04045f), x * F(1.0f / 12.92f), power);
}

HWY_INLINE F srgbOfLinear(F x)
{
    const F power = F(1.055f) * powOfPositive(x, F(1.0f / 2.4f)) - F(0.055f);
    return choose(x <= F(0.0031308f), x * F(12.92f), power);
}

HWY_INLINE F cubeRootOf(F x)
{
    const F root = powOfPositive(absOf(x), F(1.0f / 3.0f));
    return choose(x < F(0.0f), -root, root);
}

struct Oklab
{
    F lightness, a, b;
};

/// B. Ottosson, "A perceptual color space for image processing" (2020), of a colour in sRGB.
HWY_INLINE Oklab oklabOfSrgb(Rgb colour)
{
    const F r = linearOfSrgb(colour.r), g = linearOfSrgb(colour.g), b = linearOfSrgb(colour.b);
    const F l = cubeRootOf(F(0.4122214708f) * r + F(0.5363325363f) * g + F(0.0514459929f) * b);
    const F m = cubeRootOf(F(0.2119034982f) * r + F(0.6806995451f) * g + F(0.1073969566f) * b);
    const F s = cubeRootOf(F(0.0883024619f) * r + F(0.2817188376f) * g + F(0.6299787005f) * b);
    return {F(0.2104542553f) * l + F(0.7936177850f) * m - F(0.0040720468f) * s,
            F(1.9779984951f) * l - F(2.4285922050f) * m + F(0.4505937099f) * s,
            F(0.0259040371f) * l + F(0.7827717662f) * m - F(0.8086757660f) * s};
}

/// How far a colour lies from another, as a mask: 1 up to the tolerance, falling to 0 over the softness.
/// Distances are those of red, green and blue, or of the perceptual space; black and white are 1 apart in the
/// latter and sqrt(3) in the former.
struct ColourKey
{
    ColourKey(const float* key, float tolerance, float softness, bool perceptual)
        : m_key{F(key[0]), F(key[1]), F(key[2])}, m_end(tolerance + softness),
          m_factor(1.0f / std::max(softness, 1e-6f)), m_perceptual(perceptual)
    {
        if (perceptual) {
            const Oklab lab = oklabOfSrgb(m_key);
            m_key = {lab.lightness, lab.a, lab.b};
        }
    }

    HWY_INLINE F maskOf(Rgb colour) const
    {
        if (m_perceptual) {
            const Oklab lab = oklabOfSrgb(colour);
            colour = {lab.lightness, lab.a, lab.b};
        }
        const F r = colour.r - m_key.r, g = colour.g - m_key.g, b = colour.b - m_key.b;
        const F t = clampOf((m_end - sqrtOf(r * r + g * g + b * b)) * m_factor, F(0.0f), F(1.0f));
        return t * t * (F(3.0f) - F(2.0f) * t);
    }

private:
    Rgb m_key;
    F m_end, m_factor;
    bool m_perceptual;
};

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
