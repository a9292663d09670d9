#pragma once

#include "samples/tests/samplepackage.h"

#include <array>
#include <string>

namespace vellor::samples {

/// What the pictures of one graph say of a surface at a place: the usual channels, found by their usages,
/// with what a renderer assumes where one is missing. Colours are linear.
class SurfaceMaps
{
public:
    using Vec = std::array<float, 3>;

    /// The results must live as long as this does.
    SurfaceMaps(const Results& results, const std::string& graph, const SamplePackage& package);

    /// Whether there is enough to shade: base colour and normal.
    bool complete() const { return m_baseColour && m_normal; }
    bool hasHeight() const { return m_height != nullptr; }
    int width() const { return m_baseColour->width; }
    int height() const { return m_baseColour->height; }

    struct Point
    {
        Vec baseColour, normal, emissive; // normal: of unit length, x right, y up the picture, z out of it
        float roughness, metallic, occlusion;
    };
    /// At u, v of the picture, v downwards; goes around. Between pixels values are blended.
    Point at(float u, float v) const;
    /// 0 to 1.
    float heightAt(float u, float v) const;

private:
    struct Taps;
    static Vec colourAt(const Picture& picture, float u, float v);
    static float greyAt(const Picture* picture, float u, float v, float missing);

    const Picture *m_baseColour = nullptr, *m_normal = nullptr, *m_roughness = nullptr, *m_metallic = nullptr,
                  *m_occlusion = nullptr, *m_height = nullptr, *m_emissive = nullptr;
};

/// The maps on a ball in a studio, as pictures of materials are usually shown: one large lamp at the upper
/// left, a rim lamp, a soft sky; the height displaces the ball by up to `relief` of its radius and casts
/// shadows. The texture goes around the ball four times. Microfacets after Walter et al. (2007), masking
/// after Smith with Schlick's form.
Picture drawMaterialBall(const SurfaceMaps& maps, int side, float relief, int tiles = 4);

/// The maps flat, seen from straight above under the same lamps, with shadows of the height.
Picture drawFlatLit(const SurfaceMaps& maps, int side, float relief, int tiles = 1);

} // namespace vellor::samples
