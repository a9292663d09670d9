#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/powertable.h"

#ifndef VELLOR_LINEARTOSRGB_STATE
#define VELLOR_LINEARTOSRGB_STATE
namespace vellor::nodes {
namespace {

struct LineartosrgbState : State
{
    PowerTable power{1.0f / 2.4f};
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/lineartosrgb.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void lineartosrgbRow(const RowJob& job)
{
    const PowerTable& power = static_cast<const LineartosrgbState&>(*job.state).power;
    mapTones(job, [&power](F x) {
        return choose(x <= F(0.0031308f), x * F(12.92f), F(1.055f) * raised(power, x) - F(0.055f));
    });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(lineartosrgbRow)

static std::unique_ptr<State> prepareLineartosrgb(const Setup&)
{
    return std::make_unique<LineartosrgbState>();
}

const NodeDeclaration lineartosrgbNode{
    "lineartosrgb",
    "Linear to sRGB",
    "Tone",
    "Encodes linear light as sRGB, by the exact two pieces of IEC 61966-2-1. Alpha stays.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to change."}},
    {},
    prepareLineartosrgb,
    runlineartosrgbRow};

} // namespace vellor::nodes
#endif
