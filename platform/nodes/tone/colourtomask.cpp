#include "platform/nodes/colourkey.h"
#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/colourtomask.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/colour-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void colourtomaskRow(const RowJob& job)
{
    const auto& state = static_cast<const ColourKeyState&>(*job.state);
    const ColourKey key(state.key.data(), state.tolerance, state.softness, state.perceptual);
    const float *r = job.operands[0], *g = job.operands[1], *b = job.operands[2];
    const ResultRow to(job, 0);
    for (int i = 0; i < job.count; i += kLanes)
        to.put(i, key.maskOf({load(r + i), load(g + i), load(b + i)}));
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_PUTTING_ROW_KERNEL(colourtomaskRow)

static std::unique_ptr<State> prepareColourtomask(const Setup& setup)
{
    return std::make_unique<ColourKeyState>(setup.parameters[0], setup.parameters + 1);
}

const NodeDeclaration colourtomaskNode{
    "colourtomask",
    "Colour to Mask",
    "Tone",
    "White where the picture has a colour, black where it has another.",
    ResultChannels::Grey,
    Chance::None,
    {{"input", OperandChannels::Colour, true, "The colour picture."}},
    {{"colour", ParameterType::Float3, {1, 0, 0}, 0, 1, "The colour that becomes white."},
     {"tolerance", ParameterType::Float, {0.1}, 0, 1, "How far from it colours may lie to be taken in full."},
     {"softness", ParameterType::Float, {0.1}, 0, 1, "Over which further distance they fade out."},
     {"metric",
      ParameterType::Choice,
      {0},
      0,
      1,
      "How colours are told apart: by eye, in B. Ottosson's space Oklab (2020), with the picture taken as "
      "sRGB and black "
      "and white 1 apart, or by red, green and blue.",
      {"perceptual", "rgb"}}},
    prepareColourtomask,
    runcolourtomaskRow};

} // namespace vellor::nodes
#endif
