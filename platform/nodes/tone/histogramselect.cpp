#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"

#ifndef VELLOR_HISTOGRAMSELECT_STATE
#define VELLOR_HISTOGRAMSELECT_STATE
namespace vellor::nodes {
namespace {

struct HistogramselectState : State
{
    float position = 0.5f, top = 1.0f, factor = 1.0f;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/histogramselect.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void histogramselectRow(const RowJob& job)
{
    const auto& state = static_cast<const HistogramselectState&>(*job.state);
    const F position(state.position), top(state.top), factor(state.factor);
    mapTones(job, [=](F x) { return clampOf(top - absOf(x - position) * factor, F(0.0f), F(1.0f)); });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(histogramselectRow)

static std::unique_ptr<State> prepareHistogramselect(const Setup& setup)
{
    auto state = std::make_unique<HistogramselectState>();
    const float range = held(setup.parameters[1].f[0], 1e-5f, 10.0f);
    const float width = 1.0f - held(setup.parameters[2].f[0], 0.0f, 0.9999f);
    state->position = setup.parameters[0].f[0];
    state->factor = 1.0f / (range * width);
    state->top = 1.0f / width;
    return state;
}

const NodeDeclaration histogramselectNode{
    "histogramselect",
    "Histogram Select",
    "Tone",
    "White where the picture has a tone, falling to black on both sides of it: "
    "clamp((1 - |x - position| / range) / (1 - contrast)).",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to change."}},
    {{"position", ParameterType::Float, {0.5}, 0, 1, "The tone that becomes white."},
     {"range", ParameterType::Float, {0.25}, 0, 1, "How far from it black begins."},
     {"contrast",
      ParameterType::Float,
      {0.0},
      0,
      1,
      "How much of the range is white, and how hard its edges are."}},
    prepareHistogramselect,
    runhistogramselectRow};

} // namespace vellor::nodes
#endif
