#include "platform/nodes/colourkey.h"
#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"

#ifndef VELLOR_REPLACECOLOUR_STATE
#define VELLOR_REPLACECOLOUR_STATE
namespace vellor::nodes {
namespace {

struct ReplacecolourState : ColourKeyState
{
    using ColourKeyState::ColourKeyState;
    std::array<float, 4> target{};
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/replacecolour.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/colour-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void replacecolourRow(const RowJob& job)
{
    const auto& state = static_cast<const ReplacecolourState&>(*job.state);
    const ColourKey key(state.key.data(), state.tolerance, state.softness, state.perceptual);
    const F r(state.target[0] - state.key[0]), g(state.target[1] - state.key[1]),
        b(state.target[2] - state.key[2]);
    mapColours(job, [&](Rgb in) {
        const F mask = key.maskOf(in);
        return Rgb{in.r + r * mask, in.g + g * mask, in.b + b * mask};
    });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_PUTTING_ROW_KERNEL(replacecolourRow)

static std::unique_ptr<State> prepareReplacecolour(const Setup& setup)
{
    auto state = std::make_unique<ReplacecolourState>(setup.parameters[0], setup.parameters + 2);
    state->target = setup.parameters[1].f;
    return state;
}

const NodeDeclaration replacecolourNode{
    "replacecolour",
    "Replace Colour",
    "Tone",
    "Shifts one colour of the picture, and those near it, to another: the small differences among them stay. "
    "Alpha stays.",
    ResultChannels::Colour,
    Chance::None,
    {{"input", OperandChannels::Colour, true, "The colour picture."}},
    {{"source", ParameterType::Float3, {1, 0, 0}, 0, 1, "The colour to replace."},
     {"target", ParameterType::Float3, {0, 0, 1}, 0, 1, "What it becomes."},
     {"tolerance", ParameterType::Float, {0.1}, 0, 1, "How far from it colours may lie to be taken in full."},
     {"softness", ParameterType::Float, {0.1}, 0, 1, "Over which further distance they fade out."},
     {"metric",
      ParameterType::Choice,
      {0},
      0,
      1,
      "How colours are told apart: by eye, in B. Ottosson's space Oklab (2020), with the picture taken as "
      "sRGB and black "
      "and white 1 apart, or by red, green and blue.",
      {"perceptual", "rgb"}}},
    prepareReplacecolour,
    runreplacecolourRow};

} // namespace vellor::nodes
#endif
