#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/selectivestate.h"

#ifndef VELLOR_GREYCONVERSION_STATE
#define VELLOR_GREYCONVERSION_STATE
namespace vellor::nodes {
namespace {

struct GreyState : SelectiveState
{
    bool reads(int, int channel) const override { return channel < 3 || (method == 0 && weights[3] != 0.0f); }

    std::array<float, kMaxChannels> weights{};
    int method = 0;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/greyconversion.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

template<class Function> HWY_INLINE void greyOf(const RowJob& job, Function function)
{
    const float *r = job.operands[0], *g = job.operands[1], *b = job.operands[2];
    const ResultRow to(job, 0);
    for (int i = 0; i < job.count; i += kLanes)
        to.put(i, function(load(r + i), load(g + i), load(b + i), i));
}

void greyRow(const RowJob& job)
{
    const auto& state = static_cast<const GreyState&>(*job.state);
    const F wr(state.weights[0]), wg(state.weights[1]), wb(state.weights[2]), wa(state.weights[3]);
    const float* a = job.operands[3];
    switch (state.method) {
    case 1:
        return greyOf(job, [](F r, F g, F b, int) { return maxOf(maxOf(r, g), b); });
    case 2:
        return greyOf(job, [](F r, F g, F b, int) { return minOf(minOf(r, g), b); });
    case 3:
        return greyOf(job, [](F r, F g, F b, int) {
            return (maxOf(maxOf(r, g), b) + minOf(minOf(r, g), b)) * F(0.5f);
        });
    default:
        if (state.weights[3] == 0.0f)
            return greyOf(job, [=](F r, F g, F b, int) { return (r * wr + g * wg) + b * wb; });
        return greyOf(job,
                      [=](F r, F g, F b, int i) { return (r * wr + g * wg) + (b * wb + load(a + i) * wa); });
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_PUTTING_ROW_KERNEL(greyRow)

static std::unique_ptr<State> prepareGrey(const Setup& setup)
{
    auto state = std::make_unique<GreyState>();
    state->weights = setup.parameters[0].f;
    state->method = setup.parameters[1].i[0];
    return state;
}

const NodeDeclaration greyconversionNode{
    "greyconversion",
    "Colour to Grey",
    "Tone",
    "Adds up the channels of a colour picture by weights, or takes their "
    "largest, smallest or the middle of both. The weights' defaults are the "
    "luminance of ITU-R BT.709.",
    ResultChannels::Grey,
    Chance::None,
    {{"input", OperandChannels::Colour, true, "The colour picture."}},
    {{"weights",
      ParameterType::Float4,
      {0.2126, 0.7152, 0.0722, 0.0},
      -2,
      2,
      "Factors of red, green, blue and alpha."},
     {"method",
      ParameterType::Choice,
      {0},
      0,
      3,
      "How grey is found: by the weights, or from red, green and blue alone the "
      "maximum, the minimum, or the lightness halfway between.",
      {"weights", "maximum", "minimum", "lightness"}}},
    prepareGrey,
    rungreyRow};

} // namespace vellor::nodes
#endif
