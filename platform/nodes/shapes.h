#pragma once

namespace vellor::nodes {

enum class ShapeKind
{
    Disc,
    Box,
    Polygon,
    Star,
    Ring,
    Capsule,
    Bell,
    Hemisphere,
    Cone,
    Pyramid,
    Count
};

/// A shape within -1 to 1 on both axes. Lengths are shares of half its size.
struct ShapeOutline
{
    ShapeKind kind = ShapeKind::Disc;
    float sides = 6.0f;    // of polygons; tips of stars
    float ratio = 0.5f;    // box: corner radius; star: inner radius; ring: width; capsule: radius
    float softness = 0.0f; // width of the edge inside the outline
    // Polygon and star: normal of the edge beside a tip, the tip's direction being (1, 0), and the edge's
    // distance.
    float edgeX = 1.0f, edgeY = 0.0f, edgeOffset = 1.0f;
};

/// Holds the numbers to what makes sense and works out the edge.
ShapeOutline makeShape(int kind, int sides, float ratio, float softness);

/// The names of the kinds, for declarations.
#define VELLOR_SHAPE_CHOICES                                                                                 \
    {                                                                                                        \
        "disc", "box", "polygon", "star", "ring", "capsule", "bell", "hemisphere", "cone", "pyramid"         \
    }

} // namespace vellor::nodes
