#include "platform/nodes/geometry/affine.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"

namespace vellor::nodes {
namespace {

enum class CropMode
{
    Fill,
    Mask
};

struct CropState : State
{
    AffinePlan plan;
    CropMode mode = CropMode::Fill;
    float left = 0.0f, top = 0.0f, right = 0.0f, bottom = 0.0f; // in pixels
};

std::unique_ptr<State> prepareCrop(const Setup& setup)
{
    auto state = std::make_unique<CropState>();
    const ParameterValue* p = setup.parameters;
    const auto edge = [&](int i, int size) {
        return held(p[0].f[i], -16.0f, 16.0f) * static_cast<float>(size);
    };
    state->left = edge(0, setup.width);
    state->top = edge(1, setup.height);
    state->right = std::max(edge(2, setup.width), state->left);
    state->bottom = std::max(edge(3, setup.height), state->top);
    state->mode = static_cast<CropMode>(held(p[1].i[0], 0, 1));
    AffineMap map;
    if (state->mode == CropMode::Fill) {
        map.xx = (double(state->right) - state->left) / setup.width;
        map.yy = (double(state->bottom) - state->top) / setup.height;
        map.x0 = state->left + 0.5 * map.xx - 0.5;
        map.y0 = state->top + 0.5 * map.yy - 0.5;
    }
    const auto filter = static_cast<PixelFilter>(held(p[2].i[0], 0, 2));
    state->plan = planAffine(map, {filter, Edges::Repeat}, true, setup.width, setup.height);
    return state;
}

std::vector<ScratchShape> cropScratch(const State* state, const Setup& setup)
{
    return affineScratch(static_cast<const CropState*>(state)->plan, setup.channels);
}

/// The share of pixel x that lies between two places.
float coverOf(int x, float low, float high)
{
    const auto at = static_cast<float>(x);
    return std::max(std::min(at + 1.0f, high) - std::max(at, low), 0.0f);
}

void maskRow(const CropState& state, const MutableImage& image, int y)
{
    const float down = coverOf(y, state.top, state.bottom);
    for (int c = 0; c < image.channels; ++c) {
        float* row = rowOf(image, c, y);
        for (int x = 0; x < image.width; ++x)
            row[x] *= coverOf(x, state.left, state.right) * down;
    }
}

void cropArea(const AreaJob& job)
{
    const auto& state = static_cast<const CropState&>(*job.state);
    runAffine(state.plan, job);
    if (state.mode == CropMode::Mask)
        for (int y = job.y0; y < job.y1; ++y)
            maskRow(state, job.result, y);
}

} // namespace

const NodeDeclaration cropNode{
    "crop",
    "Crop",
    "Geometry",
    "Takes a rectangle out of a picture: blown up to the whole picture, or where it is, with 0 around it.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to crop."}},
    {{"rectangle",
      ParameterType::Float4,
      {0.25, 0.25, 0.75, 0.75},
      0,
      1,
      "Left, top, right and bottom edge, in shares of width and height."},
     {"mode",
      ParameterType::Choice,
      {0},
      0,
      1,
      "Whether the rectangle fills the result or stays in its place.",
      {"fill", "mask"}},
     filterParameter()},
    prepareCrop,
    nullptr,
    cropArea,
    cropScratch};

} // namespace vellor::nodes
