#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"

#ifndef VELLOR_COLOURMATRIX_STATE
#define VELLOR_COLOURMATRIX_STATE
namespace vellor::nodes {
namespace {

struct ColourmatrixState : State
{
    std::array<std::array<float, 4>, 5> rows{}; // red, green, blue, alpha, offset
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/colourmatrix.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void colourmatrixRow(const RowJob& job)
{
    const auto& m = static_cast<const ColourmatrixState&>(*job.state).rows;
    const float *r = job.operands[0], *g = job.operands[1], *b = job.operands[2], *a = job.operands[3];
    // Two channels at a time: their factors fit the registers, and the pixels are in the first cache.
    for (int c = 0; c < kMaxChannels; c += 2) {
        const F r0(m[c][0]), g0(m[c][1]), b0(m[c][2]), a0(m[c][3]), offset0(m[4][c]);
        const F r1(m[c + 1][0]), g1(m[c + 1][1]), b1(m[c + 1][2]), a1(m[c + 1][3]), offset1(m[4][c + 1]);
        const ResultRow to0(job, c), to1(job, c + 1);
        for (int i = 0; i < job.count; i += kLanes) {
            const F red = load(r + i), green = load(g + i), blue = load(b + i), alpha = load(a + i);
            to0.put(i, (red * r0 + green * g0) + (blue * b0 + alpha * a0) + offset0);
            to1.put(i, (red * r1 + green * g1) + (blue * b1 + alpha * a1) + offset1);
        }
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_PUTTING_ROW_KERNEL(colourmatrixRow)

static std::unique_ptr<State> prepareColourmatrix(const Setup& setup)
{
    auto state = std::make_unique<ColourmatrixState>();
    for (std::size_t i = 0; i < state->rows.size(); ++i)
        state->rows[i] = setup.parameters[i].f;
    return state;
}

const NodeDeclaration colourmatrixNode{
    "colourmatrix",
    "Colour Matrix",
    "Tone",
    "Mixes channels: each channel of the result adds up red, green, blue and alpha by four factors, and an "
    "offset.",
    ResultChannels::Colour,
    Chance::None,
    {{"input", OperandChannels::Colour, true, "The colour picture."}},
    {{"red",
      ParameterType::Float4,
      {1, 0, 0, 0},
      -2,
      2,
      "Factors of red, green, blue and alpha for the red result."},
     {"green", ParameterType::Float4, {0, 1, 0, 0}, -2, 2, "The same for green."},
     {"blue", ParameterType::Float4, {0, 0, 1, 0}, -2, 2, "The same for blue."},
     {"alpha", ParameterType::Float4, {0, 0, 0, 1}, -2, 2, "The same for alpha."},
     {"offset", ParameterType::Float4, {0, 0, 0, 0}, -1, 1, "What is added to each channel."}},
    prepareColourmatrix,
    runcolourmatrixRow};

} // namespace vellor::nodes
#endif
