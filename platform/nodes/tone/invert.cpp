#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"

#ifndef VELLOR_INVERT_STATE
#define VELLOR_INVERT_STATE
namespace vellor::nodes {
namespace {

struct InvertState : State
{
    bool alpha = false;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/invert.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void invertRow(const RowJob& job)
{
    const auto inverted = [](F x) { return F(1.0f) - x; };
    mapTones(job, inverted);
    if (job.channels == 4 && static_cast<const InvertState&>(*job.state).alpha)
        mapChannel(job, 3, inverted);
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(invertRow)

static std::unique_ptr<State> prepareInvert(const Setup& setup)
{
    auto state = std::make_unique<InvertState>();
    state->alpha = setup.parameters[0].i[0] != 0;
    return state;
}

const NodeDeclaration invertNode{
    "invert",
    "Invert",
    "Tone",
    "Gives 1 - x.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to invert."}},
    {{"alpha", ParameterType::Bool, {0}, 0, 1, "Inverts the alpha channel too."}},
    prepareInvert,
    runinvertRow};

} // namespace vellor::nodes
#endif
