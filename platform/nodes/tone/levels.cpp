#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/powertable.h"

#ifndef VELLOR_LEVELS_STATE
#define VELLOR_LEVELS_STATE
namespace vellor::nodes {
namespace {

struct LevelsState : State
{
    std::array<float, kMaxChannels> inLow{}, factor{}, outLow{}, outSpan{};
    std::array<PowerTable, kMaxChannels> power;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/levels.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void levelsRow(const RowJob& job)
{
    const auto& state = static_cast<const LevelsState&>(*job.state);
    for (int c = 0; c < job.channels; ++c) {
        const F inLow(state.inLow[c]), factor(state.factor[c]);
        const F outLow(state.outLow[c]), outSpan(state.outSpan[c]);
        const auto position = [=](F x) { return clampOf((x - inLow) * factor, F(0.0f), F(1.0f)); };
        if (state.power[c].exponent == 1.0f)
            mapChannel(job, c, [=](F x) { return outLow + outSpan * position(x); });
        else
            withPower(state.power[c], [&](auto power) {
                mapChannel(job, c, [=](F x) { return outLow + outSpan * power(position(x)); });
            });
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(levelsRow)

static std::unique_ptr<State> prepareLevels(const Setup& setup)
{
    auto state = std::make_unique<LevelsState>();
    const ParameterValue* p = setup.parameters;
    for (int c = 0; c < kMaxChannels; ++c) {
        const float span = p[1].f[c] - p[0].f[c];
        state->inLow[c] = p[0].f[c];
        // Equal bounds make a step: a factor that leaves nothing between 0 and 1.
        state->factor[c] = span == 0.0f ? 1e30f : 1.0f / span;
        state->power[c] = PowerTable(1.0f / std::min(std::max(p[2].f[c], 1e-3f), 1e3f));
        state->outLow[c] = p[3].f[c];
        state->outSpan[c] = p[4].f[c] - p[3].f[c];
    }
    return state;
}

const NodeDeclaration levelsNode{
    "levels",
    "Levels",
    "Tone",
    "Stretches the range from inlow to inhigh to the range from outlow to outhigh, bent by a gamma: "
    "outlow + (outhigh - outlow) * clamp((x - inlow) / (inhigh - inlow))^(1 / gamma).",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to change."}},
    {{"inlow", ParameterType::Float4, {0, 0, 0, 0}, 0, 1, "What becomes outlow, for each channel."},
     {"inhigh", ParameterType::Float4, {1, 1, 1, 1}, 0, 1, "What becomes outhigh, for each channel."},
     {"gamma",
      ParameterType::Float4,
      {1, 1, 1, 1},
      0.1,
      10,
      "Above 1 lightens the middle tones, below 1 darkens them."},
     {"outlow",
      ParameterType::Float4,
      {0, 0, 0, 0},
      0,
      1,
      "The darkest value of the result, for each channel."},
     {"outhigh",
      ParameterType::Float4,
      {1, 1, 1, 1},
      0,
      1,
      "The lightest value of the result, for each channel."}},
    prepareLevels,
    runlevelsRow};

} // namespace vellor::nodes
#endif
