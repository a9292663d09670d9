#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"

#ifndef VELLOR_CONTRAST_STATE
#define VELLOR_CONTRAST_STATE
namespace vellor::nodes {
namespace {

struct ContrastState : State
{
    float factor = 1.0f, offset = 0.0f;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/contrast.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void contrastRow(const RowJob& job)
{
    const auto& state = static_cast<const ContrastState&>(*job.state);
    const F factor(state.factor), offset(state.offset);
    mapTones(job, [=](F x) { return x * factor + offset; });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(contrastRow)

static std::unique_ptr<State> prepareContrast(const Setup& setup)
{
    auto state = std::make_unique<ContrastState>();
    const float contrast = held(setup.parameters[1].f[0], -1.0f, 0.9999f);
    state->factor = contrast < 0.0f ? 1.0f + contrast : 1.0f / (1.0f - contrast);
    state->offset = 0.5f - 0.5f * state->factor + setup.parameters[0].f[0];
    return state;
}

const NodeDeclaration contrastNode{
    "contrast",
    "Brightness and Contrast",
    "Tone",
    "Stretches values around the middle grey and shifts them: (x - 0.5) * k + 0.5 + brightness, k being 1 + "
    "contrast below 0 and 1 / (1 - contrast) above.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to change."}},
    {{"brightness", ParameterType::Float, {0.0}, -1, 1, "How much is added."},
     {"contrast",
      ParameterType::Float,
      {0.0},
      -1,
      1,
      "Below 0 flattens, above 0 steepens; -1 is grey, 1 two tones."}},
    prepareContrast,
    runcontrastRow};

} // namespace vellor::nodes
#endif
