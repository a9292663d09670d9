#include "platform/nodes/kinds.h"
#include "platform/nodes/neighbourhood/morphology.h"

namespace vellor::nodes {

static std::unique_ptr<State> prepareErode(const Setup& setup)
{
    return prepareMorphology(setup, true);
}

const NodeDeclaration erodeNode{
    "erode",
    "Erode",
    "Neighbourhood",
    "The least value of each channel under a disc or a square around each pixel: what is light shrinks. "
    "Wraps "
    "around.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture."}},
    {{"radius",
      ParameterType::Float,
      {5.0},
      0,
      100,
      "How far the shape reaches, in thousandths of the picture's width, rounded to whole pixels."},
     {"shape", ParameterType::Choice, {0}, 0, 1, "The shape.", {"disc", "square"}}},
    prepareErode,
    nullptr,
    runMorphology};

} // namespace vellor::nodes
