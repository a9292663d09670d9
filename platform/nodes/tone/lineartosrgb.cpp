#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/lineartosrgb.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/colour-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void lineartosrgbRow(const RowJob& job)
{
    mapTones(job, [](F x) { return srgbOfLinear(x); });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(lineartosrgbRow)

const NodeDeclaration lineartosrgbNode{
    "lineartosrgb",
    "Linear to sRGB",
    "Tone",
    "Encodes linear light as sRGB, by the exact two pieces of IEC 61966-2-1. Alpha stays.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to change."}},
    {},
    nullptr,
    runlineartosrgbRow};

} // namespace vellor::nodes
#endif
