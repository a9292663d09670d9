// Shapes that the kinds shape and tile draw, for the instruction set that is being compiled. Included after
// simd.h.

#if defined(VELLOR_NODES_SHAPES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLOR_NODES_SHAPES_INL_H
#undef VELLOR_NODES_SHAPES_INL_H
#else
#define VELLOR_NODES_SHAPES_INL_H
#endif

#include "platform/nodes/shapes.h"
#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {

/// Distance from the shape's edge, positive inside; exact near the edge, a bound elsewhere. The shape fills
/// -1 to 1.
HWY_INLINE F insideOf(const ShapeOutline& shape, F x, F y)
{
    const F zero(0.0f), one(1.0f);
    switch (shape.kind) {
    case ShapeKind::Box: {
        const F radius(shape.ratio);
        const F qx = absOf(x) - (one - radius), qy = absOf(y) - (one - radius);
        const F ox = maxOf(qx, zero), oy = maxOf(qy, zero);
        return radius - sqrtOf(ox * ox + oy * oy) - minOf(maxOf(qx, qy), zero);
    }
    case ShapeKind::Polygon:
    case ShapeKind::Star: {
        // Folded into half of one of the sectors around the tips; (edgeX, edgeY) is the outward normal of its
        // edge. A tip points up.
        const float sector = 2.0f * kPi / shape.sides;
        const F angle = atan2Of(x, -y) * F(1.0f / sector);
        const F folded = absOf(angle - roundOf(angle)) * F(sector);
        const F radius = sqrtOf(x * x + y * y);
        const SinCos at = sinCosOf(folded);
        return F(shape.edgeOffset) - radius * (at.cosine * F(shape.edgeX) + at.sine * F(shape.edgeY));
    }
    case ShapeKind::Ring: {
        const F half(0.5f * shape.ratio);
        return half - absOf(sqrtOf(x * x + y * y) - (one - half));
    }
    case ShapeKind::Capsule: {
        const F reach(1.0f - shape.ratio);
        const F dx = x - clampOf(x, -reach, reach);
        return F(shape.ratio) - sqrtOf(dx * dx + y * y);
    }
    case ShapeKind::Pyramid:
        return one - maxOf(absOf(x), absOf(y));
    default:
        return one - sqrtOf(x * x + y * y);
    }
}

/// How much of the shape shows at (x, y), 0 to 1. `pixel` is the size of a pixel in the shape's units.
HWY_INLINE F shapeAt(const ShapeOutline& shape, F x, F y, F pixel)
{
    const F inside = insideOf(shape, x, y);
    const F zero(0.0f), one(1.0f);
    switch (shape.kind) {
    case ShapeKind::Bell: {
        const F t = clampOf(inside * (F(2.0f) - inside), zero, one); // 1 - r^2
        return t * t * t;
    }
    case ShapeKind::Hemisphere:
        return sqrtOf(clampOf(inside * (F(2.0f) - inside), zero, one));
    case ShapeKind::Cone:
    case ShapeKind::Pyramid:
        return clampOf(inside, zero, one);
    default: {
        const F t = clampOf((inside + F(0.5f) * pixel) / (F(shape.softness) + pixel), zero, one);
        return shape.softness > 0.0f ? t * t * (F(3.0f) - F(2.0f) * t) : t;
    }
    }
}

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
