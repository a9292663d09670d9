#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/powertable.h"

#ifndef VELLOR_SRGBTOLINEAR_STATE
#define VELLOR_SRGBTOLINEAR_STATE
namespace vellor::nodes {
namespace {

struct SrgbtolinearState : State
{
    PowerTable power{2.4f};
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/srgbtolinear.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void srgbtolinearRow(const RowJob& job)
{
    const PowerTable& power = static_cast<const SrgbtolinearState&>(*job.state).power;
    mapTones(job, [&power](F x) {
        return choose(x <= F(0.04045f), x * F(1.0f / 12.92f),
                      raised(power, (x + F(0.055f)) * F(1.0f / 1.055f)));
    });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(srgbtolinearRow)

static std::unique_ptr<State> prepareSrgbtolinear(const Setup&)
{
    return std::make_unique<SrgbtolinearState>();
}

const NodeDeclaration srgbtolinearNode{
    "srgbtolinear",
    "sRGB to Linear",
    "Tone",
    "Decodes sRGB to linear light, by the exact two pieces of IEC 61966-2-1. Alpha stays.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to change."}},
    {},
    prepareSrgbtolinear,
    runsrgbtolinearRow};

} // namespace vellor::nodes
#endif
