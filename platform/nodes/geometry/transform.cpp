#include "platform/nodes/geometry/affine.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

namespace vellor::nodes {
namespace {

struct TransformState : State
{
    AffinePlan plan;
};

enum class TransformFilter
{
    Mipmapped,
    Bicubic,
    Bilinear,
    Nearest
};

PixelFilter pixelFilterOf(TransformFilter filter)
{
    switch (filter) {
    case TransformFilter::Bicubic:
        return PixelFilter::Bicubic;
    case TransformFilter::Nearest:
        return PixelFilter::Nearest;
    default:
        return PixelFilter::Bilinear;
    }
}

/// Looks back from the result: it is turned clockwise, so back counterclockwise.
AffineMap mapOf(const Setup& setup)
{
    const ParameterValue* p = setup.parameters;
    const auto inverse = [](float scale) {
        const float size = std::clamp(scalar::absOf(scale), 1e-4f, 1e6f);
        return (scale < 0.0f ? -1.0 : 1.0) / double(size > 0.0f ? size : 1e-4f);
    };
    const double scaleX = inverse(p[0].f[0]) * held(p[3].f[0], 1e-3f, 1024.0f);
    const double scaleY = inverse(p[0].f[1]) * held(p[3].f[1], 1e-3f, 1024.0f);
    const scalar::SinCos turn = scalar::sinCosOfTurns(held(p[1].f[0], -1e4f, 1e4f));
    AffineMap map;
    map.xx = double(turn.cosine) * scaleX;
    map.xy = double(turn.sine) * scaleX;
    map.yx = -double(turn.sine) * scaleY;
    map.yy = double(turn.cosine) * scaleY;
    const double middleX = 0.5 * (setup.width - 1), middleY = 0.5 * (setup.height - 1);
    const double fromX = middleX + double(held(p[2].f[0], -1e4f, 1e4f)) * setup.width;
    const double fromY = middleY + double(held(p[2].f[1], -1e4f, 1e4f)) * setup.height;
    map.x0 = middleX - (map.xx * fromX + map.xy * fromY);
    map.y0 = middleY - (map.yx * fromX + map.yy * fromY);
    return map;
}

std::unique_ptr<State> prepareTransform(const Setup& setup)
{
    auto state = std::make_unique<TransformState>();
    const auto filter = static_cast<TransformFilter>(held(setup.parameters[5].i[0], 0, 3));
    const bool averaged = filter == TransformFilter::Mipmapped || filter == TransformFilter::Bicubic;
    const auto edges = static_cast<Edges>(held(setup.parameters[4].i[0], 0, 2));
    state->plan =
        planAffine(mapOf(setup), {pixelFilterOf(filter), edges}, averaged, setup.width, setup.height);
    return state;
}

std::vector<ScratchShape> transformScratch(const State* state, const Setup& setup)
{
    return affineScratch(static_cast<const TransformState*>(state)->plan, setup.channels);
}

void transformArea(const AreaJob& job)
{
    runAffine(static_cast<const TransformState&>(*job.state).plan, job);
}

} // namespace

const NodeDeclaration transformNode{
    "transform",
    "Transform 2D",
    "Geometry",
    "Scales, turns, moves and repeats a picture around its middle. What becomes smaller is averaged by a "
    "pyramid of halved pictures (L. Williams), what becomes larger is interpolated.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to transform."}},
    {{"scale", ParameterType::Float2, {1, 1}, -8, 8, "Size in width and height; below 0 mirrors."},
     {"rotation", ParameterType::Float, {0.0}, -1, 1, "Turns the picture clockwise, in turns."},
     {"offset",
      ParameterType::Float2,
      {0, 0},
      -1,
      1,
      "Moves it right and down, in shares of width and height."},
     {"tiling", ParameterType::Float2, {1, 1}, 1, 32, "How often it repeats across and down."},
     {"wrap",
      ParameterType::Choice,
      {1},
      0,
      2,
      "What lies beyond the picture's edges: 0, the picture again, or its mirror image.",
      {"none", "repeat", "mirror"}},
     {"filter",
      ParameterType::Choice,
      {0},
      0,
      3,
      "How the picture is read between its pixels. The first two average what becomes smaller; where nothing "
      "does, bicubic is Catmull-Rom's spline, which keeps detail. Bilinear and nearest never average.",
      {"mipmapped", "bicubic", "bilinear", "nearest"}}},
    prepareTransform,
    nullptr,
    transformArea,
    transformScratch};

} // namespace vellor::nodes
