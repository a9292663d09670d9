#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/srgbtolinear.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/colour-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void srgbtolinearRow(const RowJob& job)
{
    mapTones(job, [](F x) { return linearOfSrgb(x); });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(srgbtolinearRow)

const NodeDeclaration srgbtolinearNode{
    "srgbtolinear",
    "sRGB to Linear",
    "Tone",
    "Decodes sRGB to linear light, by the exact two pieces of IEC 61966-2-1. Alpha stays.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to change."}},
    {},
    nullptr,
    runsrgbtolinearRow};

} // namespace vellor::nodes
#endif
