#include "platform/nodes/shapes.h"

#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

namespace vellor::nodes {

ShapeOutline makeShape(int kind, int sides, float ratio, float softness)
{
    ShapeOutline shape;
    shape.kind = static_cast<ShapeKind>(held(kind, 0, static_cast<int>(ShapeKind::Count) - 1));
    shape.sides = static_cast<float>(held(sides, 3, 64));
    shape.ratio = held(ratio, 0.0f, 1.0f);
    shape.softness = held(softness, 0.0f, 1.0f);
    // The edge runs from the tip (1, 0) to the inner corner half a sector further.
    const scalar::SinCos half = scalar::sinCosOfTurns(0.5f / shape.sides);
    const float inner = shape.kind == ShapeKind::Star ? held(shape.ratio, 0.02f, half.cosine) : half.cosine;
    const float dx = inner * half.cosine - 1.0f, dy = inner * half.sine;
    const float length = scalar::sqrtOf(dx * dx + dy * dy);
    shape.edgeX = dy / length;
    shape.edgeY = -dx / length;
    shape.edgeOffset = shape.edgeX;
    return shape;
}

} // namespace vellor::nodes
