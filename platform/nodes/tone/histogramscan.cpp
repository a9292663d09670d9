#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"

#ifndef VELLOR_HISTOGRAMSCAN_STATE
#define VELLOR_HISTOGRAMSCAN_STATE
namespace vellor::nodes {
namespace {

struct HistogramscanState : State
{
    float low = 0.0f, factor = 1.0f;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/histogramscan.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void histogramscanRow(const RowJob& job)
{
    const auto& state = static_cast<const HistogramscanState&>(*job.state);
    const F low(state.low), factor(state.factor);
    mapTones(job, [=](F x) { return clampOf((x - low) * factor, F(0.0f), F(1.0f)); });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(histogramscanRow)

static std::unique_ptr<State> prepareHistogramscan(const Setup& setup)
{
    auto state = std::make_unique<HistogramscanState>();
    const float width = 1.0f - held(setup.parameters[1].f[0], 0.0f, 1.0f);
    const float position = held(setup.parameters[0].f[0], 0.0f, 1.0f);
    state->low = (1.0f - position) * (1.0f + width) - width;
    state->factor = 1.0f / held(width, 1e-5f, 1.0f);
    return state;
}

const NodeDeclaration histogramscanNode{
    "histogramscan",
    "Histogram Scan",
    "Tone",
    "Stretches a window of the tones, 1 - contrast wide, to 0 to 1, and moves it from above white to below "
    "black: the "
    "picture grows out of black into white, its lightest places first.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to change."}},
    {{"position",
      ParameterType::Float,
      {0.5},
      0,
      1,
      "How much has come out of black: 0 is all black, 1 all white."},
     {"contrast",
      ParameterType::Float,
      {0.0},
      0,
      1,
      "How hard the edge is: 0 keeps the tones at position 0.5, 1 leaves two tones."}},
    prepareHistogramscan,
    runhistogramscanRow};

} // namespace vellor::nodes
#endif
