#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"

#ifndef VELLOR_COLOURBALANCE_STATE
#define VELLOR_COLOURBALANCE_STATE
namespace vellor::nodes {
namespace {

struct ColourbalanceState : State
{
    std::array<std::array<float, 4>, 3> shifts{}; // shadows, midtones, highlights
    bool keepLuminance = true;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/colourbalance.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void colourbalanceRow(const RowJob& job)
{
    const auto& state = static_cast<const ColourbalanceState&>(*job.state);
    const auto& s = state.shifts;
    const F keep(state.keepLuminance ? 1.0f : 0.0f);
    mapColours(job, [&](Rgb in) {
        const F y = clampOf(luminanceOf(in), F(0.0f), F(1.0f)), dark = F(1.0f) - y;
        const F shadows = dark * dark, highlights = y * y, midtones = F(2.0f) * y * dark;
        const auto shift = [&](int c) {
            return shadows * F(s[0][c]) + midtones * F(s[1][c]) + highlights * F(s[2][c]);
        };
        const Rgb moved{shift(0), shift(1), shift(2)};
        const F back = luminanceOf(moved) * keep;
        return Rgb{in.r + (moved.r - back), in.g + (moved.g - back), in.b + (moved.b - back)};
    });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_PUTTING_ROW_KERNEL(colourbalanceRow)

static std::unique_ptr<State> prepareColourbalance(const Setup& setup)
{
    auto state = std::make_unique<ColourbalanceState>();
    for (std::size_t i = 0; i < state->shifts.size(); ++i)
        state->shifts[i] = setup.parameters[i].f;
    state->keepLuminance = setup.parameters[3].i[0] != 0;
    return state;
}

const NodeDeclaration colourbalanceNode{
    "colourbalance",
    "Colour Balance",
    "Tone",
    "Shifts the colour of shadows, midtones and highlights, each by its own amount. By the luminance y they "
    "weigh "
    "(1 - y)^2, 2 y (1 - y) and y^2, which add up to 1. Alpha stays.",
    ResultChannels::Colour,
    Chance::None,
    {{"input", OperandChannels::Colour, true, "The colour picture."}},
    {{"shadows",
      ParameterType::Float3,
      {0, 0, 0},
      -1,
      1,
      "What is added to red, green and blue of dark places."},
     {"midtones", ParameterType::Float3, {0, 0, 0}, -1, 1, "The same for the middle tones."},
     {"highlights", ParameterType::Float3, {0, 0, 0}, -1, 1, "The same for light places."},
     {"keepluminance",
      ParameterType::Bool,
      {1},
      0,
      1,
      "Takes out what the shifts would change in luminance."}},
    prepareColourbalance,
    runcolourbalanceRow};

} // namespace vellor::nodes
#endif
